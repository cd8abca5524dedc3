#include "framework/told_traffic.h"

#include "framework/link_io.h"

namespace told_traffic {

TrafficListener* listenerOf(const DriverBasic& driver)
{
    if (driver.serial_)
        return traffic::listenerOf(*driver.serial_);
    return driver.ethernet_ ? traffic::listenerOf(*driver.ethernet_) : 0;
}

void tell(const DriverBasic& driver, Traffic::Kind kind, const QByteArray& bytes)
{
    TrafficListener* const listener = bytes.isEmpty() ? 0 : listenerOf(driver);
    if (listener)
        listener->hear(Traffic(kind, bytes));
}

void tellEnd(const DriverBasic& driver)
{
    if (TrafficListener* const listener = listenerOf(driver))
        listener->hear(Traffic(Traffic::ended, QByteArray(), driver.error_code_));
}

void send(const DriverBasic& driver, const QByteArray& request)
{
    const bool is_heard = listenerOf(driver) != 0;
    tell(driver, Traffic::discarded, link_io::discard(driver.serial_, driver.ethernet_, is_heard));
    if (link_io::send(driver.device_, request))
        tell(driver, Traffic::sent, request);
}

QByteArray take(const DriverBasic& driver)
{
    const QByteArray response = link_io::take(driver.device_);
    tell(driver, Traffic::taken, response);
    return response;
}

} // namespace told_traffic
