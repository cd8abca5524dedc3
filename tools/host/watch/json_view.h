#ifndef TOOLS_HOST_WATCH_JSON_VIEW_H
#define TOOLS_HOST_WATCH_JSON_VIEW_H

#include "tools/host/terminal/output.h"
#include "tools/host/watch/watch_view.h"

namespace tovik_host::watch {

/// Shows a watch as JSON: one object a line for every change.
class JsonView : public WatchView
{
public:
    /// \param output must outlive the view.
    explicit JsonView(terminal::Output& output) : output_(output) {}

    void start(const WatchSubject& subject, const QDateTime& now) override;
    void valueChanged(const ItemState& state) override;
    void statusChanged(const WatchModel& model) override;
    void roundDone(const WatchModel& model, const QDateTime& now) override;
    void numbersDue(const WatchModel& model, const QDateTime& now) override;
    void end(const QDateTime& now) override;

private:
    terminal::Output& output_;
};

} // namespace tovik_host::watch

#endif
