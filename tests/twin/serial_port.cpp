#include "interface/drv_serial.h"

/// Calls the serial port's own functions, as a driver may: scripts/test-qt4 builds it with what the
/// pkg-config file says.
int main()
{
    DrvSerial port;
    port.setBaudRate(BAUD9600);
    return port.isOpen() ? 1 : 0;
}
