#include "tools/host/driver/device_link.h"

#include "tools/host/driver/serial_device_link.h"
#include "tools/host/driver/tcp_device_link.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

namespace tovik_host::driver {

namespace {

const int tick = 10;
/// Least time between the beginnings of two attempts of tend().
const int retry_pause = 500;

} // namespace

std::unique_ptr<DeviceLink> DeviceLink::make(const DeviceConfig& config)
{
    if (const TcpAddress* tcp = std::get_if<TcpAddress>(&config.link))
        return std::make_unique<TcpDeviceLink>(*tcp, config.settings);
    return std::make_unique<SerialDeviceLink>(std::get<SerialAddress>(config.link),
                                              config.settings);
}

bool DeviceLink::isUp()
{
    // A far end that has gone is an event like any other.
    QCoreApplication::processEvents();
    const bool is_up = state() == State::up;
    if (is_up)
        problem_.clear();
    else if (problem_.isEmpty())
        problem_ = QStringLiteral("the line has hung up");
    return is_up;
}

void DeviceLink::begin()
{
    attempt_.start();
    startOpening();
}

void DeviceLink::giveUp()
{
    problem_ = QStringLiteral("no connection within %1 s; is the address right, and the device on?")
                   .arg(double(attempt_.elapsed()) / 1000, 0, 'f', 1);
    giveUpOpening();
}

bool DeviceLink::open(int milliseconds, const std::atomic<bool>& stop)
{
    if (isUp())
        return true;
    if (state() == State::down)
        begin();
    if (state() == State::opening) {
        QEventLoop loop;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, &loop, [&] {
            if (state() != State::opening || stop || attempt_.hasExpired(milliseconds))
                loop.quit();
        });
        timer.start(tick);
        loop.exec();
    }
    if (!isUp() && state() == State::opening)
        giveUp();
    return isUp();
}

bool DeviceLink::tend(int milliseconds)
{
    if (isUp())
        return true;
    if (state() == State::opening && attempt_.hasExpired(milliseconds))
        giveUp();
    if (state() == State::down && (!attempt_.isValid() || attempt_.hasExpired(retry_pause)))
        begin();
    return isUp();
}

} // namespace tovik_host::driver
