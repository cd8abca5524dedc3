#include "tests/examples/modbus/modbus_device.h"

#include "examples/modbus/modbus_rtu.h"
#include "examples/modbus/modbus_tcp.h"

using modbus::Transport;

namespace {

const int many_writes = 15; // from this function code on, a request says its own length

int sizeOfRequest(Transport transport, const QByteArray& input)
{
    if (input.size() < 7)
        return 0;
    const bool rtu = transport == Transport::Rtu;
    int size = rtu ? 8 : 6 + modbus::numberAt(input, 4);
    if (rtu && input.at(1) >= many_writes)
        size = 9 + modbus::byteAt(input, 6);
    return input.size() >= size ? size : 0;
}

} // namespace

ModbusDevice::ModbusDevice(Transport transport)
    : ScriptedDevice(
          transport == Transport::Rtu ? Line::Pty : Line::Tcp,
          [transport](const QByteArray& input) { return sizeOfRequest(transport, input); })
{}

QByteArray answerFrame(Transport transport, const QByteArray& request, const QByteArray& pdu)
{
    if (transport == Transport::Rtu)
        return modbus::rtuFrame(modbus::byteAt(request, 0), pdu);
    return modbus::tcpFrame(modbus::numberAt(request, 0), modbus::byteAt(request, 6), pdu);
}

QByteArray pduOf(Transport transport, const QByteArray& request)
{
    return transport == Transport::Rtu ? request.mid(1, request.size() - 3) : request.mid(7);
}
