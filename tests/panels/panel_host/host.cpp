// Loads the driver as a panel's runtime does, with one item of the service at the address that it
// is given; prints what a page of the panel would show when the item has been read, or cannot be.
#include "interface/drv_ethernet.h"
#include "interface/drv_interface.h"
#include "interface/drvlib.h"
#include "property/property_tovik_iot.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <dlfcn.h>

#include <cstdio>

namespace {

QString page(const DrvInterface* driver)
{
    // @page@
    return line;
}

PropertyTovikIot configuration(const char* url)
{
    PropertyTovikIot property;
    property.host = QString::fromLocal8Bit(url);
    property.project = QLatin1String("plant");
    property.email = QLatin1String("operator@example.com");
    property.password = QLatin1String("tovik");
    PropertyTovikIotDataItem item;
    item.name = QLatin1String("Flow");
    item.dataitem_id = QLatin1String("boiler-flow");
    item.type = QLatin1String("32Bit-FLOAT");
    property.dataitems.append(item);
    return property;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    void* library = dlopen("libtovik_iot.so.1", RTLD_NOW | RTLD_LOCAL);
    if (!library || argc != 2)
        qFatal("%s", library ? "Usage: panel_host URL" : dlerror());
    const auto create = reinterpret_cast<decltype(&create_drvlib)>(dlsym(library, "create_drvlib"));

    DrvEthernet link;
    link.driver_specific_data[QLatin1String("tovik_iot")] =
        QVariant::fromValue(configuration(argv[1]));
    link.driver_specific_data[QLatin1String("tovik_iot_err_handle_type")] = 2;
    DrvInterface* driver = create(nullptr, nullptr, &link);

    // As long as only a failed test takes.
    QElapsedTimer since;
    since.start();
    while (driver->property("cycle_count").toInt() < 2 &&
           driver->property("last_error").toInt() == 0 && since.elapsed() < 100000) {
        application.processEvents();
        QThread::msleep(20);
    }
    std::puts(qPrintable(page(driver)));
    emit link.EmitNotifyBeforeRelease();
    delete driver;
    return since.elapsed() < 100000 ? 0 : 1;
}
