#include "tools/host/driver/device_host.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QFileInfo>
#include <QNetworkProxy>
#include <QTimer>

namespace tovik_host::driver {

namespace {

const int tick = 10;
/// Least time between the beginnings of two attempts of tend().
const int retry_pause = 500;

/// The file of a port, as the port itself finds it.
QString pathOf(const QString& device)
{
    for (const char* start : {"/", "./", "../"}) {
        if (device.startsWith(QLatin1String(start)))
            return device;
    }
    return u"/dev/"_s + device;
}

/// A serial line to a device. A port whose adapter is unplugged is down until it is back.
class SerialDeviceLink : public DeviceLink
{
public:
    SerialDeviceLink(const SerialAddress& address, const LinkSettings& settings)
        : path_(pathOf(address.device)),
          port_(path_)
    {
        settings.fill(&port_);
        port_.setBaudRate(address.baud_rate);
        port_.setDataBits(address.data_bits);
        port_.setParity(address.parity);
        port_.setStopBits(address.stop_bits);
        port_.setFlowControl(address.flow);
    }

    DrvSerial* serial() override { return &port_; }

protected:
    State state() override
    {
        return port_.isOpen() && QFileInfo::exists(path_) ? State::up : State::down;
    }

    void startOpening() override
    {
        // A port whose device has gone may still call itself open.
        port_.close();
        if (!port_.open(QIODevice::ReadWrite))
            problem_ = openingProblem();
    }

    void giveUpOpening() override {}

private:
    QString openingProblem()
    {
        const QFileInfo file(path_);
        if (!file.exists()) {
            return u"there is no device \"%1\"; is the adapter plugged in? \"ls /dev/tty*\" shows "
                   "what there is"_s.arg(path_);
        }
        if (::access(QFile::encodeName(path_).constData(), R_OK | W_OK) != 0) {
            return u"no permission for \"%1\"; its group is \"%2\": become a member of it (sudo "
                   "usermod -aG %2 USER, then log in anew)"_s.arg(path_, file.group());
        }
        if (port_.lastError() == E_PERMISSION_DENIED)
            return u"\"%1\" is in use by another program"_s.arg(path_);
        return u"cannot open \"%1\" as a serial port: %2"_s.arg(path_, port_.errorString());
    }

    QString path_;
    DrvSerial port_;
};

/// A TCP connection to a device.
class TcpDeviceLink : public DeviceLink
{
public:
    TcpDeviceLink(const TcpAddress& address, const LinkSettings& settings) : address_(address)
    {
        settings.fill(&socket_);
        // A device stands in the machine's own network, whatever the desktop's proxy may be.
        socket_.setProxy(QNetworkProxy::NoProxy);
        connect(&socket_, &QAbstractSocket::errorOccurred, this, &TcpDeviceLink::onError);
        connect(&socket_, &QAbstractSocket::connected, this, [this] {
            // Requests are small, and each waits for its answer.
            socket_.setSocketOption(QAbstractSocket::LowDelayOption, 1);
        });
    }

    DrvEthernet* ethernet() override { return &socket_; }
    void announceRelease() override { Q_EMIT socket_.EmitNotifyBeforeRelease(); }

protected:
    State state() override
    {
        if (socket_.state() == QAbstractSocket::ConnectedState)
            return State::up;
        const bool is_opening = socket_.state() == QAbstractSocket::HostLookupState ||
                                socket_.state() == QAbstractSocket::ConnectingState;
        return is_opening ? State::opening : State::down;
    }

    void startOpening() override
    {
        // What is left of a closing connection would refuse a new one.
        socket_.abort();
        socket_.connectToHost(address_.host, address_.port);
    }

    void giveUpOpening() override { socket_.abort(); }

private:
    void onError(QAbstractSocket::SocketError error)
    {
        switch (error) {
        case QAbstractSocket::SocketTimeoutError:
            // Drivers wait for answers that do not come; the connection is well.
            break;
        case QAbstractSocket::ConnectionRefusedError:
            problem_ =
                u"connection refused; is the device's service running, and the port right?"_s;
            break;
        case QAbstractSocket::HostNotFoundError:
            problem_ = u"no host of the name \"%1\" is known"_s.arg(address_.host);
            break;
        case QAbstractSocket::RemoteHostClosedError:
            problem_ = u"the device has closed the connection"_s;
            break;
        default:
            problem_ = socket_.errorString();
        }
    }

    TcpAddress address_;
    DrvEthernet socket_;
};

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
        problem_ = u"the line has hung up"_s;
    return is_up;
}

void DeviceLink::begin()
{
    attempt_.start();
    startOpening();
}

void DeviceLink::giveUp()
{
    problem_ = u"no connection within %1 s; is the address right, and the device on?"_s.arg(
        double(attempt_.elapsed()) / 1000, 0, 'f', 1);
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
