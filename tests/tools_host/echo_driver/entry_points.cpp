#include "interface/drvlib.h"

#include "tests/tools_host/echo_driver/echo_driver.h"

DrvInterface* create_drvlib(void* first, void* second, DrvEthernet* link)
{
    return new EchoDriver(*static_cast<QString*>(first), static_cast<DrvSerial*>(second), link);
}

quint32 drv_version()
{
    return 1 * 65536 + 2 * 256 + 3;
}
