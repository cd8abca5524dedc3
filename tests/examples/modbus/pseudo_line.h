#ifndef TESTS_EXAMPLES_MODBUS_PSEUDO_LINE_H
#define TESTS_EXAMPLES_MODBUS_PSEUDO_LINE_H

#include <QString>

#include <atomic>
#include <thread>

/// A serial line without hardware: the driver opens the port, the test has the far end's
/// descriptor.
class PseudoLine
{
public:
    PseudoLine();
    ~PseudoLine();

    QString portName() const { return port_name_; }
    /// Non-blocking.
    int descriptor() const { return descriptor_; }
    /// Hangs up.
    void close();

private:
    Q_DISABLE_COPY(PseudoLine)

    int descriptor_;
    /// Keeps the line from counting as hung up while nobody has opened the port.
    int port_;
    QString port_name_;
};

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

    PseudoLine lines_[2];
    std::atomic<bool> stop_{false};
    std::thread thread_;
};

/// Writes all of it to a non-blocking descriptor; false if that is gone.
bool writeAll(int descriptor, const char* bytes, int size);

#endif
