#include "interface/drvlib.h"

#include "modbus_driver.h"
#include "modbus_status.h"

#include <QDebug>

namespace {

const int version_major = 1;
const int version_minor = 0;
const int version_patch = 0;

} // namespace

DrvInterface* create_drvlib(void* first, void* second, DrvEthernet* link)
{
    const QString* name = static_cast<QString*>(first);
    DrvSerial* serial = static_cast<DrvSerial*>(second);
    return new ModbusDriver(name ? *name : QString(), serial, link);
}

quint32 drv_version()
{
    qDebug() << QString(QLatin1String("[Driver Version] v%1.%2.%3"))
                    .arg(version_major)
                    .arg(version_minor)
                    .arg(version_patch);
    return QT_VERSION_CHECK(version_major, version_minor, version_patch);
}

const result_code::Words* drv_result_codes()
{
    return modbus::statusWords();
}
