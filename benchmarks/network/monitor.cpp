#include "benchmarks/network/monitor.h"

#include <QTimer>
#include <QUrl>

namespace bench {

namespace {

PropertyTovikIot propertyFor(const std::string& url, int items)
{
    PropertyTovikIot property;
    property.host = QUrl(QString::fromStdString(url)).adjusted(QUrl::RemovePath).toString();
    for (int i = 0; i < items; ++i) {
        PropertyTovikIotDataItem item;
        item.name = QLatin1String("X");
        item.dataitem_id = QLatin1String("X");
        property.dataitems.append(item);
    }
    return property;
}

} // namespace

Monitor::Monitor(const std::string& url, int items)
    : property_(propertyFor(url, items)),
      client_(&property_)
{
    client_.SlotInitialLater();
    for (QTimer* timer : client_.findChildren<QTimer*>())
        timer->stop();
    QObject::connect(&client_, &TovikIot::EmitGetMonitor,
                     [this](const QList<MonitorDataItem>& list) { read_ = list.size(); });
}

bool Monitor::cycle()
{
    read_ = 0;
    client_.SlotMonitorTimeOut();
    return read_ == property_.dataitems.size();
}

} // namespace bench
