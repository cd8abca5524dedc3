#ifndef TESTS_EXAMPLES_MODBUS_MODBUS_DEVICE_H
#define TESTS_EXAMPLES_MODBUS_MODBUS_DEVICE_H

#include "examples/modbus/modbus_request.h"
#include "tests/support/scripted_device.h"

/// A device that takes Modbus requests; without a behaviour it does nothing about them.
class ModbusDevice : public ScriptedDevice
{
public:
    explicit ModbusDevice(modbus::Transport transport);
};

/// The frame with which a device answers \a request by \a pdu.
QByteArray answerFrame(modbus::Transport transport, const QByteArray& request,
                       const QByteArray& pdu);
/// The PDU of a request frame.
QByteArray pduOf(modbus::Transport transport, const QByteArray& request);

#endif
