#include "cloud/drv_tovik_iot.h"
#include "cloud/tovik_iot.h"
#include "interface/drv_ethernet.h"
#include "tests/twin/ear.h"
#include "tests/twin/service_under_control.h"
#include "tests/twin/transcript.h"
#include "tests/twin/twin.h"
#include "tests/twin/wait_until.h"

#include <QElapsedTimer>
#include <QNetworkProxy>
#include <QTimer>

namespace {

const int any_age = 60000; // ms

// Left out are an array as a reply, which would end the program; the fault of a TLS version that Qt
// 4 does not speak; and those of a client that resumes sessions, as Qt 4 does not.
const char* const faults[] = {"",
                              "errorcode",
                              "errorcode:code=1",
                              "errorcode:code=-5",
                              "errorcode:code=1000000000",
                              "errorcode:code=15",
                              "empty",
                              "truncated",
                              "not-json",
                              "missing",
                              "missing:member=token",
                              "missing:member=groups",
                              "missing:member=Number",
                              "missing:member=dataitems",
                              "missing:member=value",
                              "mistyped",
                              "mistyped:member=token",
                              "mistyped:member=groups",
                              "mistyped:member=Number",
                              "mistyped:member=dataitems",
                              "mistyped:member=value",
                              "http500",
                              "http500:status=404",
                              "http500-empty",
                              "drip:ms=1",
                              "delay:ms=50",
                              "hang:path=login,seconds=1",
                              "reset",
                              "reset-mid",
                              "refuse",
                              "token-expiry",
                              "wrong-host",
                              "expired",
                              "tickets-lost",
                              "no-tickets",
                              "tls-version:version=1.2"};

void sayResult(const char* operation, int result)
{
    sayLog();
    say(QByteArray(operation) + " gives " + QByteArray::number(result));
}

/// Each operation by itself. The token comes from a login without a fault.
void operations(ServiceUnderControl& service, const char* fault)
{
    section(("operations " + QByteArray(fault)).constData());
    service.setFault("");
    PropertyTovikIot property = service.property();
    Conversation conversation(&property);
    QString token;
    conversation.login(property.project, property.email, property.password, &token);
    takeLog();
    TovikIot client(&property);
    service.setFault(fault);
    sayResult("login", client.Login(property.project, property.email, property.password));
    sayResult("groups", client.GetGroupList(token));
    for (int i = 0; i < property.groups.size(); ++i)
        say("group " + property.groups.at(i).name.toUtf8() + ' ' +
            QByteArray::number(property.groups.at(i).dataitems.size()));
    PropertyTovikIotGroup group;
    group.group_id = QLatin1String("all");
    sayResult("items", client.GetDataitemList(token, &group));
    for (int i = 0; i < group.dataitems.size(); ++i)
        say("item " + group.dataitems.at(i).name.toUtf8() + ' ' +
            textOf(group.dataitems.at(i).value));
    sayResult("read", client.ReadDataitemValue(token, property.dataitems.at(2)));
    sayResult("write", client.WriteDataitemValue(token, property.dataitems.at(2), QVariant(7)));
    service.setFault("");
    say("has " + service.valueOf("16Bit-INT"));
    service.setValue("16Bit-INT", "-12345");
    sayResult("connect", client.Connect2Cloud());
}

/// Qt never begins such a request.
void proxyThatCannotCarryIt(const ServiceUnderControl& service)
{
    section("proxy");
    PropertyTovikIot property = service.property();
    // Qt leaves proxies out on the way to 127.0.0.1; this is the same machine by another name.
    property.host.replace(QLatin1String("127.0.0.1"), QLatin1String("0.0.0.0"));
    TovikIot client(&property);
    takeLog();
    QNetworkProxy::setApplicationProxy(
        QNetworkProxy(QNetworkProxy::FtpCachingProxy, QLatin1String("127.0.0.1"), 9));
    sayResult("login", client.Login(property.project, property.email, property.password));
    QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::NoProxy));
}

void sayTimers(const TovikIot& client)
{
    const QList<QTimer*> timers = client.findChildren<QTimer*>();
    QByteArray line("timers");
    for (int i = 0; i < timers.size(); ++i)
        line += ' ' + QByteArray::number(timers.at(i)->interval()) +
                (timers.at(i)->isActive() ? " runs" : " stands");
    say(line);
}

/// So that polling does not begin by itself while a slot takes its time on a busy machine.
void putOffPolling(const TovikIot& client)
{
    const int never = 3600000; // ms
    const QList<QTimer*> timers = client.findChildren<QTimer*>();
    for (int i = 0; i < timers.size(); ++i) {
        if (timers.at(i)->isActive())
            timers.at(i)->setInterval(never);
    }
}

/// What follows a failure, with each policy of the host.
void policies(ServiceUnderControl& service, int type, bool return_time_en, bool restore_switch)
{
    section(("policy " + QByteArray::number(type) + (return_time_en ? " timed" : "") +
             (restore_switch ? " switch" : ""))
                .constData());
    PropertyTovikIot property = service.property();
    TovikIot client(&property);
    Ear ear;
    QObject::connect(&client, SIGNAL(EmitGetMonitor(QList<MonitorDataItem>)), &ear,
                     SLOT(onMonitor(QList<MonitorDataItem>)));
    QObject::connect(&client, SIGNAL(EmitUpdateErrCode(int)), &ear, SLOT(onErrCode(int)));
    client.SetDrvErrHandle(type, 30, 2, return_time_en, restore_switch);
    const char* const steps[] = {"errorcode:path=login", "", "errorcode:path=value", "",
                                 "errorcode:path=write", ""};
    client.SlotInitialLater();
    for (const char* fault : steps) {
        sayLog();
        sayTimers(client);
        say("fault " + QByteArray(fault));
        service.setFault(fault);
        putOffPolling(client);
        client.SlotMonitorTimeOut();
        client.SlotWriteValue(3, QVariant(55));
        client.SlotReconnect();
        putOffPolling(client);
        client.SlotReconnect();
    }
    client.Disconnect2Cloud();
    sayLog();
    sayTimers(client);
}

/// The driver with its thread, as a host uses it.
void driver(ServiceUnderControl& service)
{
    section("driver");
    const PropertyTovikIot property = service.property();
    DrvEthernet link;
    link.driver_specific_data[QLatin1String("tovik_iot")] = QVariant::fromValue(property);
    DrvTovikIot driver(&link);
    Ear ear;
    QObject::connect(&driver, SIGNAL(SigResponse(QString, QString, QByteArray, int)), &ear,
                     SLOT(onResponse(QString, QString, QByteArray, int)));
    say("values " + QByteArray::number(waitUntil([&] { return hasValues(driver, any_age); })));
    sayLog();
    QSharedPointer<AddrData> address(new AddrData);
    address->data_length = 20;
    for (int i = 0; i < property.dataitems.size(); ++i) {
        address->address = property.dataitems.at(i).name;
        say("read " + address->address.toUtf8());
        driver.SigGetValuesByteArray(QLatin1String("unit"), QLatin1String("link"), 1, address);
    }
    for (int i = 0; i < property.dataitems.size(); ++i) {
        address->address = property.dataitems.at(i).name;
        say("write " + address->address.toUtf8());
        const QByteArray bytes(i == 0 ? "\0\0\0\0" : "!21B", 4);
        driver.SigSetValuesByteArray(QLatin1String("unit"), QLatin1String("link"), 1, bytes,
                                     address);
    }
    const uint all = uint(property.dataitems.size());
    say("written " + QByteArray::number(waitUntil([&] { return driver.writeCount() == all; })));
    QElapsedTimer time;
    time.start();
    say("values " +
        QByteArray::number(waitUntil([&] { return hasValues(driver, time.elapsed()); })));
    sayLog();
    for (int i = 0; i < property.dataitems.size(); ++i) {
        address->address = property.dataitems.at(i).name;
        say("has " + service.valueOf(address->address.toUtf8()));
        driver.SigGetValuesByteArray(QLatin1String("unit"), QLatin1String("link"), 1, address);
    }
    address->address = QLatin1String("unknown");
    driver.SigGetValuesByteArray(QLatin1String("unit"), QLatin1String("link"), 1, address);
    link.EmitNotifyBeforeRelease();
    sayLog();
}

/// The driver is closed while its client waits for an answer.
void closingInside(const char* request, ServiceUnderControl& service)
{
    const int until_asked = 1500; // ms; the first read comes after a second
    const int at_once = 5000;     // ms
    section(("closing " + QByteArray(request)).constData());
    service.setFault("hang:path=" + QByteArray(request));
    DrvEthernet link;
    link.driver_specific_data[QLatin1String("tovik_iot")] = QVariant::fromValue(service.property());
    const DrvTovikIot driver(&link);
    QElapsedTimer time;
    time.start();
    waitUntil([&] { return time.elapsed() > until_asked; });
    say("connected " + driver.property("connected").toByteArray());
    time.start();
    link.EmitNotifyBeforeRelease();
    say("at once " + QByteArray::number(time.elapsed() < at_once));
    sayLog();
    service.setFault("");
}

} // namespace

void twinClient(ServiceUnderControl& service)
{
    for (const char* fault : faults)
        operations(service, fault);
    proxyThatCannotCarryIt(service);
    for (int type = 0; type <= 4; ++type) {
        for (int flags = 0; flags < 4; ++flags)
            policies(service, type, (flags & 1) != 0, (flags & 2) != 0);
    }
    driver(service);
    closingInside("login", service);
    closingInside("items", service);
    closingInside("value", service);
}
