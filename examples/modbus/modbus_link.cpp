#include "modbus_link.h"

#include "interface/drv_ethernet.h"
#include "interface/drv_serial.h"

namespace modbus {

Link::Link(DrvSerial* serial, DrvEthernet* ethernet)
    : serial_(serial),
      ethernet_(serial ? nullptr : ethernet),
      device_(nullptr)
{
    if (serial_)
        device_ = serial_;
    else
        device_ = ethernet_;
}

bool Link::isUp() const
{
    if (!device_ || !device_->isOpen())
        return false;
    if (ethernet_)
        return ethernet_->state() == QAbstractSocket::ConnectedState;
    // A line that has hung up stays open until the event loop runs.
    const ulong error = serial_->lastError();
    return error != E_READ_FAILED && error != E_IO_ERROR;
}

QByteArray Link::take()
{
    if (!device_ || !device_->isReadable())
        return QByteArray();
    // Much cheaper than readAll(), which makes room for 16 KiB first.
    const qint64 held = device_->bytesAvailable();
    return held > 0 ? device_->read(held) : QByteArray();
}

} // namespace modbus
