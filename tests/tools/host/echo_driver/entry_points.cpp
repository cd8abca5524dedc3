#include "framework/result_code.h"
#include "interface/drvlib.h"

#include "tests/tools/host/echo_driver/echo_driver.h"

DrvInterface* create_drvlib(void* first, void* second, DrvEthernet* link)
{
    return new EchoDriver(*static_cast<QString*>(first), static_cast<DrvSerial*>(second), link);
}

quint32 drv_version()
{
    return 1 * 65536 + 2 * 256 + 3;
}

const result_code::Words* drv_result_codes()
{
    static const result_code::Words words[] = {
        {0x400B0301, 0x400B0301, "no echo here"},
        {0x400B0400, 0x400B04FF, "the wall refuses with code"},
        {0, 0, nullptr}};
    return words;
}
