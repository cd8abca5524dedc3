#ifndef TESTS_EXAMPLES_MODBUS_PORT_PAIR_H
#define TESTS_EXAMPLES_MODBUS_PORT_PAIR_H

#include "tests/support/pty.h"

#include <atomic>
#include <thread>

/// Two serial ports with a cable between them: whatever is sent to one is received by the other.
class PortPair
{
public:
    PortPair();
    ~PortPair();

    QString firstPort() const { return lines_[0].portName(); }
    QString secondPort() const { return lines_[1].portName(); }

private:
    Q_DISABLE_COPY(PortPair)

    void pump();

    Pty lines_[2] = {Pty::Line, Pty::Line};
    std::atomic<bool> stop_{false};
    std::thread thread_;
};

#endif
