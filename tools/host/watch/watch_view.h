#ifndef TOOLS_HOST_WATCH_WATCH_VIEW_H
#define TOOLS_HOST_WATCH_WATCH_VIEW_H

#include "tools/host/driver/setup.h"
#include "tools/host/watch/watch_model.h"

#include <functional>
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

/// As JSON: one object a line for every change. \a output must outlive the view; so below.
std::unique_ptr<WatchView> jsonView(terminal::Output& output);
/// As lines of text: one for every change.
std::unique_ptr<WatchView> lineView(terminal::Output& output);
/// On a terminal: a table that is redrawn in place, with the driver's log below.
/// \param shows_log false: the log goes elsewhere, and is not shown.
std::unique_ptr<WatchView> terminalView(terminal::Context& context, bool shows_log);

/// Whether watchView() makes a table, beside which nothing else may be written.
bool isWatchedOnTerminal(const config::CommonOptions& common);
/// The view that the options and the standard output ask for: JSON, a live table on a terminal, or
/// lines. All that it is made from must outlive it.
std::unique_ptr<WatchView> watchView(const config::CommonOptions& common,
                                     terminal::Context& context);

/// How to watch, and what is to come of it.
struct WatchOptions
{
    double seconds = 0;     ///< 0: until a signal.
    int interval = 500;     ///< Milliseconds between the rounds of reads.
    double metrics = 0;     ///< Seconds between reports of the driver's numbers; 0: none.
    int stale = 3;          ///< Cycles without news after which a value is stale; 0: never.
    int count = 0;          ///< It ends after so many values; 0: it does not.
    bool is_strict = false; ///< It fails if a value was stale or bad at any time.

    bool isReached(const WatchModel& model) const
    {
        return count > 0 && model.valueCount() >= count;
    }
};

/// Looks for the reason why there is no connection, given the driver's status; empty: none was
/// found. May run the event loop.
using FindCause = std::function<QString(int)>;

/// Reads the items of \a model in rounds, and shows what changes, until a signal, the end of the
/// time, until nobody reads the output any more, or until all values have come that are wanted.
void watchService(terminal::Context& context, const driver::ServiceSetup& setup,
                  const WatchOptions& options, WatchModel& model, WatchView& view,
                  const FindCause& find_cause);
/// The same of a device. \param tells_of_link whether a lost link is told on the standard error
void watchDevice(driver::DeviceSetup& setup, const WatchOptions& options, WatchModel& model,
                 WatchView& view, bool tells_of_link);

/// Ends the view, and gives the program's exit code: a watch that has never had a value, or not
/// what \a options ask for, was in vain.
int endWatch(WatchView& view, const WatchModel& model, const WatchOptions& options,
             terminal::Context& context);

} // namespace tovik_host::watch

#endif
