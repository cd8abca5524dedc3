#include "tests/framework/scripted_device.h"

#include "tests/framework/far_end.h"

#include <QMutexLocker>
#include <QThread>

namespace {

const int patience = 30000;       // milliseconds; reached only by a failing test
const int endless_pieces = 20000; // many more than anybody waits for

Reply pieceByPiece(const QByteArray& bytes)
{
    Reply reply;
    for (const char byte : bytes)
        reply.pieces.append({1, QByteArray(1, byte)});
    return reply;
}

Reply atOnce(const QByteArray& bytes)
{
    Reply reply;
    reply.pieces.append({0, bytes});
    return reply;
}

Behaviour behaviourNamed(const QString& name)
{
    const QByteArray key = name.toLatin1();
    if (key == "answers")
        return atOnce;
    if (key == "silent")
        return [](const QByteArray&) { return Reply(); };
    if (key == "late") {
        return [](const QByteArray& answer) {
            Reply reply;
            reply.held_back = answer;
            return reply;
        };
    }
    if (key == "byte by byte")
        return pieceByPiece;
    if (key == "too short")
        return [](const QByteArray& answer) { return atOnce(answer.left(answer.size() - 1)); };
    if (key == "too long")
        return [](const QByteArray& answer) { return atOnce(answer + '!'); };
    if (key == "two replies in one")
        return [](const QByteArray& answer) { return atOnce(answer + answer); };
    if (key == "closes in mid-reply") {
        return [](const QByteArray& answer) {
            Reply reply = atOnce(answer.left(answer.size() / 2));
            reply.hangs_up = true;
            return reply;
        };
    }
    if (key == "endless")
        return [](const QByteArray&) { return pieceByPiece(QByteArray(endless_pieces, '.')); };
    qFatal("no device behaves as \"%s\"", key.constData());
}

template <typename Condition>
bool becomesTrue(Condition condition)
{
    // Counted, not timed: a machine that stands still for a while is no reason to fail.
    for (int polls = 0; polls < patience; ++polls) {
        if (condition())
            return true;
        QThread::msleep(1);
    }
    return false;
}

} // namespace

ScriptedDevice::ScriptedDevice(Line line) : hung_up_(false), hang_ups_(0), ends_(false)
{
    if (line == Line::Tcp)
        far_end_.reset(new TcpFarEnd);
    else
        far_end_.reset(new PtyFarEnd);
    behave(QStringList(QLatin1String("answers")));
    thread_ = std::thread([this] { run(); });
}

ScriptedDevice::~ScriptedDevice()
{
    ends_ = true;
    thread_.join();
}

QByteArray ScriptedDevice::valuesOf(int number, int size)
{
    QByteArray values;
    for (int i = 0; i < size; ++i)
        values.append(char(number * 7 + i * 3 + 1));
    return values;
}

QByteArray ScriptedDevice::answerTo(const QByteArray& request)
{
    const QByteArray head = 'A' + request.mid(1, 2);
    if (request.at(0) == 'W')
        return head + request.at(3);
    const int number = uchar(request.at(1)) * 256 + uchar(request.at(2));
    return head + valuesOf(number, uchar(request.at(3)));
}

quint16 ScriptedDevice::port() const
{
    const QMutexLocker locker(&mutex_);
    return far_end_->port();
}

QString ScriptedDevice::portName() const
{
    const QMutexLocker locker(&mutex_);
    return far_end_->portName();
}

void ScriptedDevice::behave(const QStringList& names)
{
    QList<Behaviour> behaviours;
    for (const QString& name : names)
        behaviours.append(behaviourNamed(name));
    const QMutexLocker locker(&mutex_);
    behaviours_ = behaviours;
}

void ScriptedDevice::behave(Behaviour behaviour)
{
    const QMutexLocker locker(&mutex_);
    behaviours_ = QList<Behaviour>{behaviour};
}

void ScriptedDevice::send(const QByteArray& bytes)
{
    const QMutexLocker locker(&mutex_);
    far_end_->send(bytes);
}

void ScriptedDevice::release()
{
    const QMutexLocker locker(&mutex_);
    far_end_->send(held_back_);
    held_back_.clear();
}

void ScriptedDevice::hangUp()
{
    const QMutexLocker locker(&mutex_);
    hangUpLocked();
}

void ScriptedDevice::hangUpLocked()
{
    far_end_->hangUp();
    hung_up_ = true;
    ++hang_ups_;
}

bool ScriptedDevice::hasHungUp() const
{
    const QMutexLocker locker(&mutex_);
    return hung_up_;
}

void ScriptedDevice::comeBack()
{
    const QMutexLocker locker(&mutex_);
    far_end_->comeBack();
    hung_up_ = false;
}

QByteArray ScriptedDevice::received() const
{
    const QMutexLocker locker(&mutex_);
    return received_;
}

bool ScriptedDevice::waitForReceived(int size) const
{
    return becomesTrue([&] { return received().size() >= size; });
}

bool ScriptedDevice::waitForConnections(int count) const
{
    return becomesTrue([&] {
        const QMutexLocker locker(&mutex_);
        return far_end_->connections() >= count;
    });
}

void ScriptedDevice::run()
{
    QByteArray waiting;
    int hang_ups = 0;
    while (!ends_) {
        {
            const QMutexLocker locker(&mutex_);
            if (hang_ups != hang_ups_)
                waiting.clear(); // nobody waits for these answers any more
            hang_ups = hang_ups_;
            const QByteArray bytes = far_end_->receive();
            received_ += bytes;
            waiting += bytes;
        }
        if (waiting.size() >= request_size) {
            serve(waiting.left(request_size), hang_ups);
            waiting.remove(0, request_size);
        } else {
            QThread::usleep(200);
        }
    }
}

void ScriptedDevice::serve(const QByteArray& request, int hang_ups)
{
    Behaviour behaviour;
    {
        const QMutexLocker locker(&mutex_);
        behaviour = behaviours_.size() > 1 ? behaviours_.takeFirst() : behaviours_.first();
    }
    const Reply reply = behaviour(answerTo(request));
    for (const Reply::Piece& piece : reply.pieces) {
        QThread::msleep(ulong(piece.pause));
        const QMutexLocker locker(&mutex_);
        if (ends_ || hang_ups != hang_ups_)
            return;
        far_end_->send(piece.bytes);
    }
    const QMutexLocker locker(&mutex_);
    held_back_ += reply.held_back;
    if (reply.hangs_up && hang_ups == hang_ups_)
        hangUpLocked();
}
