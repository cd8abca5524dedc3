#include "interface/drvlib.h"

#include "cloud/drv_tovik_iot.h"

#include <QDebug>

namespace {

const int version_major = 1;
const int version_minor = 6;
const int version_patch = 83;

} // namespace

DrvInterface* create_drvlib(void* first, void* second, DrvEthernet* link)
{
    Q_UNUSED(first)
    Q_UNUSED(second)
    qDebug() << "Create library - TOVIK IoT";
    if (!link) {
        qDebug() << "No ethernet!";
        return new DrvTovikIot;
    }
    qDebug() << "Have ethernet!";
    return new DrvTovikIot(link);
}

quint32 drv_version()
{
    qDebug() << QString(QLatin1String("[Driver Version] v%1.%2.%3"))
                    .arg(version_major)
                    .arg(version_minor)
                    .arg(version_patch);
    return version_major * 65536 + version_minor * 256 + version_patch;
}
