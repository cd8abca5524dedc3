#ifndef TOOLS_HOST_WATCH_DEVICE_WATCH_H
#define TOOLS_HOST_WATCH_DEVICE_WATCH_H

#include "tools/host/driver/setup.h"
#include "tools/host/watch/watch_view.h"

#include <QElapsedTimer>

namespace tovik_host::watch {

/// One watch of a device, from its first round to its end.
class DeviceWatch
{
public:
    DeviceWatch(driver::DeviceSetup& setup, WatchView& view, const WatchGoal& goal,
                bool tells_of_link);

    /// Runs rounds until a signal, the end of the time, or until nobody reads the output any more.
    void run(double seconds, int interval);

    const WatchModel& model() const { return model_; }

private:
    void readRound();
    void tellOfLink(const driver::DeviceAnswer& answer);
    void draw();
    bool ended() const;

    driver::DeviceSetup& setup_;
    WatchView& view_;
    const WatchGoal& goal_;
    WatchModel model_;
    QElapsedTimer since_drawing_;
    bool time_is_up_ = false;
    bool tells_of_link_;
    bool link_is_lost_ = false;
};

} // namespace tovik_host::watch

#endif
