#ifndef TESTS_SUPPORT_SCRIPTED_DEVICE_H
#define TESTS_SUPPORT_SCRIPTED_DEVICE_H

#include <QByteArray>
#include <QList>
#include <QMutex>
#include <QString>
#include <QWaitCondition>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

/// One thing that a device does about a request.
struct DeviceStep
{
    QByteArray bytes;          ///< Sent as they are.
    int delay = 0;             ///< Before that, in milliseconds.
    bool close = false;        ///< After that: closes the connection, or hangs up.
    bool is_held_back = false; ///< The bytes wait for ScriptedDevice::release().
};

/// The far end of a link, in a thread of its own, since a driver blocks the thread of the test. It
/// takes requests apart, and then does whatever the test says.
class ScriptedDevice
{
public:
    enum class Line
    {
        Tcp, ///< On a free port; one connection at a time, the latest.
        Pty
    };

    /// The size of the first request in \a input; 0 while it is not whole.
    using Framing = std::function<int(const QByteArray& input)>;
    /// What to do about a request; called in the device's thread. None does nothing.
    using Behaviour = std::function<QList<DeviceStep>(const QByteArray& request)>;

    /// \param address one of the machine's own, where TCP listens
    ScriptedDevice(Line line, const Framing& framing, quint32 address = 0x7F000001);
    ~ScriptedDevice();

    /// Where to connect to; 0 on a pseudo terminal.
    quint16 port() const;
    /// What to open; empty on TCP.
    QString portName() const;

    void setBehaviour(const Behaviour& behaviour);
    /// How the coming requests are treated, in order; the last goes for all that follow.
    void setBehaviours(const QList<Behaviour>& behaviours);

    /// Sends what nobody has asked for.
    void send(const QByteArray& bytes);
    /// Sends what has been held back.
    void release();
    /// Ends the connection, and whatever is being sent; a pseudo terminal stays so until it comes
    /// back.
    void hangUp();
    /// Hangs up, and cannot be reached any more.
    void leave();
    /// Whether it has hung up, and not come back.
    bool hasHungUp() const;
    /// Can be reached again: on the same port, or a pseudo terminal of another name.
    void comeBack();

    /// All that has been received.
    QByteArray received() const;
    /// All whole requests in it.
    QList<QByteArray> requests() const;
    /// Waits until at least so much has been received.
    bool waitForReceived(int size) const;
    int connections() const;
    /// Waits until the other side of a new connection can be spoken to.
    bool waitForConnections(int count) const;
    /// Waits until everything that was to be done about so many requests has been done.
    void waitUntilServed(int requests);

    class FarEnd;

private:
    Q_DISABLE_COPY(ScriptedDevice)

    void run();
    /// Unless the connection ends meanwhile: \a hang_ups is how often that had happened.
    void serve(const QByteArray& request, int hang_ups);
    bool take(const DeviceStep& step, int hang_ups);
    void hangUpLocked();

    const Framing framing_;
    mutable QMutex mutex_; // for what follows
    QWaitCondition served_one_;
    std::unique_ptr<FarEnd> far_end_;
    QList<Behaviour> behaviours_;
    QByteArray received_;
    QList<QByteArray> requests_;
    QByteArray held_back_;
    bool hung_up_ = false;
    int hang_ups_ = 0;
    int served_ = 0;
    std::atomic<bool> ends_{false};
    std::thread thread_;
};

#endif
