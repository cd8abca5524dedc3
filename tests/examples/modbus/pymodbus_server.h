#ifndef TESTS_EXAMPLES_MODBUS_PYMODBUS_SERVER_H
#define TESTS_EXAMPLES_MODBUS_PYMODBUS_SERVER_H

#include "examples/modbus/modbus_request.h"
#include "tests/support/bound_process.h"

#include <QString>

/// The device of the interoperability tests on pymodbus, as a child process: on a free port of the
/// loopback interface, or on a serial port.
class PymodbusServer
{
public:
    explicit PymodbusServer(modbus::Transport transport, const QString& port_name = QString());
    ~PymodbusServer();

    int port() const { return port_; }

private:
    Q_DISABLE_COPY(PymodbusServer)

    BoundProcess process_;
    int port_ = 0;
};

#endif
