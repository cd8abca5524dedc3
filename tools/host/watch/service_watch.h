#ifndef TOOLS_HOST_WATCH_SERVICE_WATCH_H
#define TOOLS_HOST_WATCH_SERVICE_WATCH_H

#include "tools/host/driver/driver_session.h"
#include "tools/host/driver/setup.h"
#include "tools/host/watch/watch_view.h"

#include <QElapsedTimer>

#include <functional>

namespace tovik_host::watch {

/// One watch of a service.
class ServiceWatch
{
public:
    /// Looks for the reason why there is no connection, given the driver's status; empty: none was
    /// found. May run the event loop.
    using FindCause = std::function<QString(int)>;

    /// All that it is given must outlive it. \param model the items that are watched
    ServiceWatch(terminal::Context& context, const driver::ServiceSetup& setup, WatchModel& model,
                 WatchView& view, const WatchGoal& goal, FindCause find_cause)
        : context_(context),
          setup_(setup),
          model_(model),
          view_(view),
          goal_(goal),
          find_cause_(std::move(find_cause))
    {}

    /// Runs rounds until a signal, the end of the time, until nobody reads the output any more, or
    /// until the goal is reached. \param seconds 0: no end \param interval between rounds, in
    /// milliseconds \param metrics seconds between reports of the driver's numbers; 0: none
    void run(double seconds, int interval, double metrics);

private:
    void readRound(driver::DriverSession& session);
    bool isOver() const;
    bool wantsCause() const;
    void lookForCause();

    terminal::Context& context_;
    const driver::ServiceSetup& setup_;
    WatchModel& model_;
    WatchView& view_;
    const WatchGoal& goal_;
    const FindCause find_cause_;
    QElapsedTimer clock_; ///< A steady one, for what happens in a time.
    QDateTime looked_at_; ///< Since when there was no connection when the cause was looked for.
};

} // namespace tovik_host::watch

#endif
