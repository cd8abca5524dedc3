#ifndef TESTS_SUPPORT_KERNEL_INPUT_H
#define TESTS_SUPPORT_KERNEL_INPUT_H

#include "interface/drv_ethernet.h"
#include "interface/drv_serial.h"

#include <QThread>

#include <sys/ioctl.h>

/// Waits until so many bytes of the far end wait in the kernel, read by nobody. Counted, not timed:
/// a machine that stands still for a while is no reason to fail.
/// \param serial null: the link is \a ethernet
inline bool waitInKernel(const DrvSerial* serial, const DrvEthernet* ethernet, int size)
{
    const int most_polls = 30000;
    for (int polls = 0; polls < most_polls; ++polls) {
        int waiting = 0;
        if (serial)
            waiting = int(serial->bytesAvailable());
        else
            ioctl(int(ethernet->socketDescriptor()), FIONREAD, &waiting);
        if (waiting >= size)
            return true;
        QThread::msleep(1);
    }
    return false;
}

#endif
