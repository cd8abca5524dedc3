#include "interface/traffic.h"

#include "interface/drv_base.h"

#include <chrono>

namespace {

QString listenerKey()
{
    return QLatin1String("traffic_listener");
}

/// Qt's own clocks are cut to milliseconds, or say no date.
qint64 now()
{
    const std::chrono::system_clock::duration since_1970 =
        std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(since_1970).count();
}

} // namespace

Traffic::Traffic(Kind a_kind, const QByteArray& some_bytes, int a_code, const QString& a_text)
    : kind(a_kind),
      time(now()),
      bytes(some_bytes),
      code(a_code),
      text(a_text),
      number(0)
{}

namespace traffic {

void setListener(DrvBase* link, TrafficListener* listener)
{
    if (listener)
        link->driver_specific_data[listenerKey()] = QVariant::fromValue(listener);
    else
        link->driver_specific_data.remove(listenerKey());
}

TrafficListener* listenerOf(const DrvBase& link)
{
    // Not by the look-up of the link itself, which inserts what it does not find.
    return link.driver_specific_data.value(listenerKey()).value<TrafficListener*>();
}

} // namespace traffic
