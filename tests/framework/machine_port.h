#ifndef TESTS_FRAMEWORK_MACHINE_PORT_H
#define TESTS_FRAMEWORK_MACHINE_PORT_H

#include "interface/drv_serial.h"

/// A serial link as it is where the port class of the machine's own library stands in: that one
/// cannot wait for input, and counts -1 bytes on a line that has hung up.
class MachinePort : public DrvSerial
{
public:
    using DrvSerial::DrvSerial;

    bool waitForReadyRead(int) override { return false; }
    qint64 bytesAvailable() const override
    {
        return has_hung_up ? -1 : DrvSerial::bytesAvailable();
    }

    bool has_hung_up = false;
};

#endif
