#ifndef TESTS_EXAMPLES_MODBUS_SCRIPTED_DEVICE_H
#define TESTS_EXAMPLES_MODBUS_SCRIPTED_DEVICE_H

#include "examples/modbus/modbus_request.h"
#include "tests/examples/modbus/pseudo_line.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

/// One thing that a device does with a request.
struct DeviceStep
{
    QByteArray bytes;   ///< Sent as they are.
    int delay = 0;      ///< Before that, in milliseconds.
    bool close = false; ///< After that: closes the connection, or hangs up.
};

/// A device in a thread of its own, on a free port of the loopback interface or on a pseudo
/// terminal. It takes requests apart, and then does whatever the test says.
class ScriptedDevice
{
public:
    /// What to do with a request frame; called in the device's thread.
    using Behaviour = std::function<QList<DeviceStep>(const QByteArray& request)>;

    explicit ScriptedDevice(modbus::Transport transport);
    ~ScriptedDevice();

    quint16 port() const { return port_; }
    QString portName() const { return line_ ? line_->portName() : QString(); }

    void setBehaviour(const Behaviour& behaviour);
    /// All request frames so far.
    QList<QByteArray> requests() const;
    /// Waits until everything that was to be done with so many requests has been done.
    void waitUntilServed(int requests);
    /// Sends bytes that nobody asked for.
    void send(const QByteArray& bytes);
    /// Closes the connection, or hangs up; a connection may be made anew.
    void hangUp();

private:
    Q_DISABLE_COPY(ScriptedDevice)

    void run();
    void acceptConnection();
    void receive();
    /// The first whole request in the input; empty if there is none.
    QByteArray takeRequest();
    void serve(const QByteArray& request);
    void closeConnection();

    const modbus::Transport transport_;
    std::unique_ptr<PseudoLine> line_;
    int listener_ = -1;
    std::atomic<int> connection_{-1};
    quint16 port_ = 0;
    QByteArray input_;

    mutable std::mutex mutex_; // for the following members
    std::condition_variable changed_;
    Behaviour behaviour_;
    QList<QByteArray> requests_;
    int served_ = 0;

    std::atomic<bool> stop_{false};
    std::atomic<bool> hang_up_{false};
    std::thread thread_;
};

/// The frame with which a device answers \a request by \a pdu.
QByteArray answerFrame(modbus::Transport transport, const QByteArray& request,
                       const QByteArray& pdu);
/// The PDU of a request frame.
QByteArray pduOf(modbus::Transport transport, const QByteArray& request);

#endif
