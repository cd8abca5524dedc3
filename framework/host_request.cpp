#include "framework/host_request.h"

#include "framework/result_code.h"

#include <QRegExp>

using namespace result_code;

namespace host_request {

namespace {

bool isUnitServed(const DrvInterface& driver)
{
    const QString& name = driver.current_unit_name;
    // Most names have no brace, and making the expression takes longer than the rest of a request.
    if (!driver.unit_list || driver.unit_list->isEmpty() || !name.startsWith(QLatin1Char('{')))
        return true;
    const QRegExp braced(QLatin1String("^\\{[^\\}]+\\}$"));
    if (braced.indexIn(name) < 0)
        return true;
    QString pattern = name;
    pattern.replace(QLatin1String("{"), QLatin1String("^\\{"));
    pattern.replace(QLatin1String("}"), QLatin1String("\\}\\d*$"));
    return driver.unit_list->indexOf(QRegExp(pattern)) >= 0;
}

/// False if the host wants the driver to stop.
bool runAttempts(DriverBasic* driver, const HostRequest& request, QByteArray* data)
{
    for (int repeats = qMax(0, driver->retry_count_);; --repeats) {
        driver->error_code_ = success;
        *data = request.ba;
        if (isStopped(*driver)) {
            driver->error_code_ = stopped;
            return false;
        }
        if (!isUnitServed(*driver))
            break;
        driver->doCmdSM(request.dir, request.addr.address, request.addr.field1,
                        request.addr.data_length, data, request.station_no, request.addr.extra1,
                        request.addr.extra2);
        if (driver->error_code_ == success || driver->error_code_ == stopped)
            return true;
        // The host may have given the unit up meanwhile.
        if (!isUnitServed(*driver))
            break;
        if (repeats == 0)
            return true;
    }
    driver->error_code_ = unit_not_served;
    return true;
}

} // namespace

bool isStopped(const DrvInterface& driver)
{
    return *reinterpret_cast<const char*>(&driver.stop_flag) != 0;
}

bool runLocked(DriverBasic* driver, const HostRequest& request, QByteArray* data)
{
    driver->request_lock_.lock();
    driver->error_code_ = success;
    driver->current_unit_name = request.unit_name;
    *data = request.ba;
    if (!driver->no_link_)
        return runAttempts(driver, request, data);
    driver->doCmdSM_Offline(request.dir, request.addr.address, request.addr.field1,
                            request.addr.data_length, data, request.station_no, request.addr.extra1,
                            request.addr.extra2);
    return true;
}

} // namespace host_request
