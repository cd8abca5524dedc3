#ifndef TESTS_CLOUD_DRIVER_FIXTURE_H
#define TESTS_CLOUD_DRIVER_FIXTURE_H

#include "cloud/drv_tovik_iot.h"
#include "interface/drv_ethernet.h"
#include "property/property_tovik_iot.h"
#include "tests/support/host_side.h"
#include "tests/support/log_recorder.h"
#include "tests/support/scripted_service.h"

#include <memory>

/// A driver on a link, as a host sets it up, with a service that says what a test wants. By default
/// the service leaves the login unanswered, so that the cache holds what the configuration says.
class DriverFixture
{
public:
    DriverFixture();
    ~DriverFixture();

    /// Adds a served item whose id is the name in upper case.
    void serve(const char* name, const char* type, const QVariant& value);
    void setErrorHandling(int type, int return_time, bool return_time_en, bool restore_switch_en);
    /// Makes the driver from what has been set up.
    void start();
    /// Closes the driver, as a host does before it releases the link.
    void close();

    /// Requests of the host, as in HostSide.
    DriverAnswer read(const char* name, int data_length = 0);
    DriverAnswer write(const char* name, const QByteArray& bytes);
    /// Reports a result of the client to the driver.
    void report(int result);
    /// Reports the values of a monitor cycle to the driver.
    void monitored(const QList<MonitorDataItem>& list);
    /// The driver's lines since the log was last taken. The client writes its own from its thread,
    /// whenever it gets there.
    QStringList takeDriverLog();

    LogRecorder log;
    ScriptedService service;
    DrvEthernet link;
    PropertyTovikIot property;
    std::unique_ptr<DrvTovikIot> driver;

private:
    HostSide host_;
};

MonitorDataItem monitoredItem(const char* id, const QVariant& value);

#endif
