// The least that a host can load: a driver that does nothing.

#include "interface/drv_interface.h"

class DrvEthernet;

extern "C" TOVIK_EXPORT DrvInterface* create_drvlib(void*, void*, DrvEthernet*)
{
    return new DrvInterface;
}
