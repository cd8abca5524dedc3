#include "tests/support/scripted_device.h"

#include "tests/support/far_end.h"

#include <QMutexLocker>
#include <QThread>

namespace {

const int patience = 30000; // milliseconds; reached only by a failing test

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

ScriptedDevice::ScriptedDevice(Line line, const Framing& framing, quint32 address)
    : framing_(framing),
      behaviours_{Behaviour()}
{
    if (line == Line::Tcp)
        far_end_.reset(new TcpFarEnd(address));
    else
        far_end_.reset(new PtyFarEnd);
    thread_ = std::thread([this] { run(); });
}

ScriptedDevice::~ScriptedDevice()
{
    ends_ = true;
    thread_.join();
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

void ScriptedDevice::setBehaviour(const Behaviour& behaviour)
{
    setBehaviours(QList<Behaviour>{behaviour});
}

void ScriptedDevice::setBehaviours(const QList<Behaviour>& behaviours)
{
    const QMutexLocker locker(&mutex_);
    behaviours_ = behaviours;
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

void ScriptedDevice::leave()
{
    const QMutexLocker locker(&mutex_);
    hangUpLocked();
    far_end_->leave();
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

QList<QByteArray> ScriptedDevice::requests() const
{
    const QMutexLocker locker(&mutex_);
    return requests_;
}

bool ScriptedDevice::waitForReceived(int size) const
{
    return becomesTrue([&] { return received().size() >= size; });
}

int ScriptedDevice::connections() const
{
    const QMutexLocker locker(&mutex_);
    return far_end_->connections();
}

bool ScriptedDevice::waitForConnections(int count) const
{
    return becomesTrue([&] { return connections() >= count; });
}

void ScriptedDevice::waitUntilServed(int requests)
{
    const QMutexLocker locker(&mutex_);
    while (served_ < requests) {
        if (!served_one_.wait(&mutex_, patience))
            qFatal("the device has not got the request");
    }
}

void ScriptedDevice::run()
{
    QByteArray input;
    int hang_ups = 0;
    int connections = 0;
    while (!ends_) {
        {
            const QMutexLocker locker(&mutex_);
            const QByteArray bytes = far_end_->receive();
            if (hang_ups != hang_ups_ || connections != far_end_->connections())
                input.clear(); // nobody waits for these answers any more
            hang_ups = hang_ups_;
            connections = far_end_->connections();
            received_ += bytes;
            input += bytes;
        }
        const int size = framing_(input);
        if (size > 0) {
            serve(input.left(size), hang_ups);
            input.remove(0, size);
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
        requests_.append(request);
        behaviour = behaviours_.size() > 1 ? behaviours_.takeFirst() : behaviours_.first();
    }
    const QList<DeviceStep> steps = behaviour ? behaviour(request) : QList<DeviceStep>();
    for (const DeviceStep& step : steps) {
        QThread::msleep(ulong(step.delay));
        if (!take(step, hang_ups))
            break;
    }
    const QMutexLocker locker(&mutex_);
    ++served_;
    served_one_.wakeAll();
}

bool ScriptedDevice::take(const DeviceStep& step, int hang_ups)
{
    const QMutexLocker locker(&mutex_);
    if (ends_ || hang_ups != hang_ups_)
        return false;
    if (step.is_held_back)
        held_back_ += step.bytes;
    else
        far_end_->send(step.bytes);
    if (step.close)
        hangUpLocked();
    return !step.close;
}
