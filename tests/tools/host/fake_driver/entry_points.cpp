#include "interface/drvlib.h"

#include "tests/tools/host/fake_driver/fake_driver.h"

DrvInterface* create_drvlib(void*, void*, DrvEthernet* link)
{
    return new FakeDriver(link);
}

quint32 drv_version()
{
    return 7 * 65536 + 8 * 256 + 9;
}
