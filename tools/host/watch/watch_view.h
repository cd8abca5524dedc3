#ifndef TOOLS_HOST_WATCH_WATCH_VIEW_H
#define TOOLS_HOST_WATCH_WATCH_VIEW_H

#include "tools/host/config/config.h"
#include "tools/host/terminal/context.h"
#include "tools/host/watch/watch_model.h"

#include <QString>

#include <memory>

namespace tovik_host::watch {

/// What a watch is about; the same from its start to its end.
struct WatchSubject
{
    QString library;        ///< The file of the driver library.
    QString driver_version; ///< "major.minor.patch".
    QString url;            ///< Of the service, without any password.
    QString project;
    QString link = QString(); ///< To a device, which has neither service nor project.
};

/// A way to show a watch.
class WatchView
{
public:
    virtual ~WatchView() = default;

    virtual void start(const WatchSubject& subject, const QDateTime& now) = 0;
    virtual void valueChanged(const ItemState&) {}
    /// The value of the item at the index has become stale, or is no longer.
    virtual void staleChanged(const WatchModel&, int, const QDateTime&) {}
    virtual void statusChanged(const WatchModel&) {}
    /// It has been found out why there is no connection.
    virtual void causeFound(const WatchModel&, const QDateTime&) {}
    /// All items have been read, or a while has passed.
    virtual void roundDone(const WatchModel&, const QDateTime&) {}
    /// The time between two reports of the driver's numbers is over.
    virtual void numbersDue(const WatchModel&, const QDateTime&) {}
    virtual void end(const QDateTime& now) = 0;
};

/// The view that the options and the standard output ask for: JSON, a live table on a terminal, or
/// lines. All that it is made from must outlive it.
std::unique_ptr<WatchView> makeWatchView(const config::CommonOptions& common,
                                         terminal::Context& context);

/// What a watch is to come to.
struct WatchGoal
{
    int count = 0;          ///< It ends after so many values; 0: it does not.
    bool is_strict = false; ///< It fails if a value was stale or bad at any time.

    bool isReached(const WatchModel& model) const
    {
        return count > 0 && model.valueCount() >= count;
    }
};

/// Ends the view, and gives the program's exit code: a watch that has never had a value, or not
/// what \a goal asks for, was in vain.
int endWatch(WatchView& view, const WatchModel& model, const WatchGoal& goal,
             terminal::Context& context);

/// Whether makeWatchView() makes a table, beside which nothing else may be written.
bool isWatchedOnTerminal(const config::CommonOptions& common);

} // namespace tovik_host::watch

#endif
