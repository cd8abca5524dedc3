#include "tests/cloud/driver_fixture.h"

namespace {

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

} // namespace

DriverFixture::DriverFixture()
{
    service.setHandler([](const ScriptedRequest&) { return ScriptedReply::hang(); });
    property.host = service.url();
    property.project = latin1("Plant");
}

DriverFixture::~DriverFixture()
{
    if (driver)
        close();
}

void DriverFixture::serve(const char* name, const char* type, const QVariant& value)
{
    PropertyTovikIotDataItem item;
    item.name = latin1(name);
    item.dataitem_id = latin1(name).toUpper();
    item.type = latin1(type);
    item.value = value;
    property.dataitems.append(item);
}

void DriverFixture::setErrorHandling(int type, int return_time, bool return_time_en,
                                     bool restore_switch_en)
{
    HostSide::setErrorHandling(&link, type, return_time, return_time_en, restore_switch_en);
}

void DriverFixture::start()
{
    link.driver_specific_data[latin1("tovik_iot")] = QVariant::fromValue(property);
    driver.reset(new DrvTovikIot(&link));
    host_.attach(driver.get());
}

void DriverFixture::close()
{
    Q_EMIT link.EmitNotifyBeforeRelease();
}

DriverAnswer DriverFixture::read(const char* name, int data_length)
{
    return host_.read(latin1(name), data_length);
}

DriverAnswer DriverFixture::write(const char* name, const QByteArray& bytes)
{
    return host_.write(latin1(name), bytes);
}

void DriverFixture::report(int result)
{
    QMetaObject::invokeMethod(driver.get(), "SlotUpdateErrCode", Q_ARG(int, result));
}

void DriverFixture::monitored(const QList<MonitorDataItem>& list)
{
    QMetaObject::invokeMethod(driver.get(), "SlotGetMonitor", Q_ARG(QList<MonitorDataItem>, list));
}

QStringList DriverFixture::takeDriverLog()
{
    return log.take().filter(latin1("[DrvTovikIot]"));
}

MonitorDataItem monitoredItem(const char* id, const QVariant& value)
{
    MonitorDataItem item;
    item.dataitem_id = latin1(id);
    item.value = value;
    return item;
}
