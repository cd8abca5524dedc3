#include "tests/system/plugin.h"

#include "interface/drvlib.h"
#include "tests/support/cloud_process.h"

#include <dlfcn.h>

namespace {

QString latin1(const char* text)
{
    return QString::fromLatin1(text);
}

/// The entry point \a name of the library; ends the test when there is none.
template <typename Function>
Function* entryPoint(const char* name)
{
    static void* const library = dlopen(TOVIK_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    void* const symbol = library ? dlsym(library, name) : nullptr;
    if (!symbol)
        qFatal("%s", dlerror());
    return reinterpret_cast<Function*>(symbol);
}

} // namespace

std::unique_ptr<DrvInterface> plugin::create(DrvEthernet* link)
{
    auto* const factory = entryPoint<decltype(create_drvlib)>("create_drvlib");
    return std::unique_ptr<DrvInterface>(factory(nullptr, nullptr, link));
}

quint32 plugin::version()
{
    return entryPoint<decltype(drv_version)>("drv_version")();
}

PluginDriver::PluginDriver() {}

PluginDriver::~PluginDriver()
{
    if (driver)
        close();
}

void PluginDriver::use(const CloudProcess& cloud)
{
    property.host = latin1("https://127.0.0.1:%1").arg(cloud.port());
    property.project = latin1("plant");
    property.email = latin1("operator@example.com");
    property.password = latin1("tovik");
}

void PluginDriver::serve(const char* name, const char* id, const char* type)
{
    PropertyTovikIotDataItem item;
    item.name = latin1(name);
    item.dataitem_id = latin1(id);
    item.type = latin1(type);
    property.dataitems.append(item);
}

void PluginDriver::start()
{
    link.driver_specific_data[latin1("tovik_iot")] = QVariant::fromValue(property);
    driver = plugin::create(&link);
    attach(driver.get());
}

void PluginDriver::close()
{
    Q_EMIT link.EmitNotifyBeforeRelease();
}

DriverAnswer PluginDriver::read(const char* name, int data_length)
{
    return HostSide::read(latin1(name), data_length);
}

DriverAnswer PluginDriver::write(const char* name, const QByteArray& bytes)
{
    return HostSide::write(latin1(name), bytes);
}
