#ifndef TESTS_SYSTEM_PLUGIN_H
#define TESTS_SYSTEM_PLUGIN_H

#include "interface/drv_ethernet.h"
#include "interface/drv_interface.h"
#include "property/property_tovik_iot.h"
#include "tests/support/host_side.h"

#include <memory>

class CloudProcess;

/// The built library, loaded by path as a host loads it.
namespace plugin {

/// Makes a driver by the library's factory.
std::unique_ptr<DrvInterface> create(DrvEthernet* link);
quint32 version();

} // namespace plugin

/// A driver of the plug-in on a link of its own, and a host for it.
class PluginDriver : public HostSide
{
public:
    PluginDriver();
    ~PluginDriver();

    /// The account of the example project at the service.
    void use(const CloudProcess& cloud);
    void serve(const char* name, const char* id, const char* type);
    void start();
    void close();

    DriverAnswer read(const char* name, int data_length = 0);
    DriverAnswer write(const char* name, const QByteArray& bytes);

    DrvEthernet link;
    PropertyTovikIot property;
    std::unique_ptr<DrvInterface> driver;
};

#endif
