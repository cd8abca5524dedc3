#ifndef TESTS_FRAMEWORK_SCRIPTED_DEVICE_H
#define TESTS_FRAMEWORK_SCRIPTED_DEVICE_H

#include <QByteArray>
#include <QList>
#include <QMutex>
#include <QString>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

/// What a device does about one request.
struct Reply
{
    struct Piece
    {
        int pause; ///< before it is sent, in milliseconds
        QByteArray bytes;
    };

    QList<Piece> pieces;
    /// Kept back until ScriptedDevice::release().
    QByteArray held_back;
    bool hangs_up = false;
};

/// Makes the reply out of the answer that a good device would give.
using Behaviour = std::function<Reply(const QByteArray& answer)>;

/// The far end of a link, in a thread of its own, since a driver blocks the thread of the test.
///
/// It speaks a protocol made for the tests. A request is four bytes: `Q`, two bytes of request
/// number, the number of bytes wanted; or `W`, two bytes of request number, one byte to be written.
/// The answer is `A`, the request number, and the bytes wanted, or the byte that was written.
class ScriptedDevice
{
public:
    enum class Line
    {
        Tcp,
        Pty
    };

    static const int request_size = 4;

    explicit ScriptedDevice(Line line);
    ~ScriptedDevice();

    /// What stands in the answer to a read.
    static QByteArray valuesOf(int number, int size);
    /// The answer that a good device gives.
    static QByteArray answerTo(const QByteArray& request);

    /// Where to connect to; 0 on a pseudo terminal.
    quint16 port() const;
    /// What to open; empty on TCP.
    QString portName() const;

    /// How the coming requests are treated, in order; the last behaviour goes for all that follow.
    /// Names: "answers", "silent", "late" (when released), "byte by byte", "too short",
    /// "too long", "two replies in one", "closes in mid-reply", "endless".
    void behave(const QStringList& names);
    void behave(Behaviour behaviour);

    /// Sends what nobody has asked for.
    void send(const QByteArray& bytes);
    /// Sends what has been held back.
    void release();
    /// Ends the connection, and whatever is being sent.
    void hangUp();
    /// Whether it has hung up, and not come back.
    bool hasHungUp() const;
    /// Can be reached again after it has hung up; under another name on a pseudo terminal.
    void comeBack();

    /// All that has been received.
    QByteArray received() const;
    /// Waits until at least so much has been received.
    bool waitForReceived(int size) const;
    /// Waits until the other side of a new connection can be spoken to.
    bool waitForConnections(int count) const;

    class FarEnd;

private:
    Q_DISABLE_COPY(ScriptedDevice)

    void run();
    /// Unless the connection ends meanwhile: \a hang_ups is how often that had happened.
    void serve(const QByteArray& request, int hang_ups);
    void hangUpLocked();

    mutable QMutex mutex_;
    std::unique_ptr<FarEnd> far_end_;
    QList<Behaviour> behaviours_;
    QByteArray received_;
    QByteArray held_back_;
    bool hung_up_;
    int hang_ups_;
    std::atomic<bool> ends_;
    std::thread thread_;
};

#endif
