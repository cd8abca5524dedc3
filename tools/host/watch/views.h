#ifndef TOOLS_HOST_WATCH_VIEWS_H
#define TOOLS_HOST_WATCH_VIEWS_H

#include "tools/host/terminal/debug_log.h"
#include "tools/host/terminal/output.h"
#include "tools/host/watch/table_view.h"
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
    void staleChanged(const WatchModel& model, int index, const QDateTime& now) override;
    void statusChanged(const WatchModel& model) override;
    void causeFound(const WatchModel& model, const QDateTime& now) override;
    void numbersDue(const WatchModel& model, const QDateTime& now) override;
    void end(const QDateTime& now) override;

private:
    terminal::Output& output_;
};

/// Shows a watch as lines of text: one for every change.
class LineView : public WatchView
{
public:
    /// \param output must outlive the view.
    explicit LineView(terminal::Output& output) : output_(output) {}

    void start(const WatchSubject& subject, const QDateTime& now) override;
    void valueChanged(const ItemState& state) override;
    void staleChanged(const WatchModel& model, int index, const QDateTime& now) override;
    void statusChanged(const WatchModel& model) override;
    void causeFound(const WatchModel& model, const QDateTime& now) override;
    void numbersDue(const WatchModel& model, const QDateTime& now) override;
    void end(const QDateTime& now) override;

private:
    void line(const QDateTime& time, const QString& text);

    terminal::Output& output_;
};

/// Shows a watch on a terminal: a table that is redrawn in place, with the driver's log below.
class TerminalView : public WatchView
{
public:
    /// \param output, log must outlive the view.
    /// \param shows_log false: the log goes elsewhere, and is not shown.
    TerminalView(terminal::Output& output, const terminal::DebugLog& log, bool shows_log);

    void start(const WatchSubject& subject, const QDateTime& now) override;
    void roundDone(const WatchModel& model, const QDateTime& now) override;
    void end(const QDateTime& now) override;

    /// The next drawing starts on an emptied screen: what the old size left there is no longer
    /// where it was drawn.
    void resized();

private:
    terminal::Output& output_;
    const terminal::DebugLog& log_;
    bool shows_log_;
    bool has_colours_;
    WatchSubject subject_;
    int drawn_lines_ = 0;
    bool from_empty_screen_ = false;
};

} // namespace tovik_host::watch

#endif
