// The functions by which a host finds the driver.
#include "template_driver.h"

#include "interface/drvlib.h"

// Drivers of devices take all three: a QString with the driver's name, a serial link and a TCP
// link; each may be null.
DrvInterface* create_drvlib(void* first, void* second, DrvEthernet* link)
{
    const QString* name = static_cast<QString*>(first);
    return new TemplateDriver(name ? *name : QString(), static_cast<DrvSerial*>(second), link);
}

quint32 drv_version()
{
    return 1 * 65536 + 0 * 256 + 0;
}

// Optional: the driver's own codes in words, which a host shows to its users.
const result_code::Words* drv_result_codes()
{
    return TemplateDriver::resultCodes();
}
