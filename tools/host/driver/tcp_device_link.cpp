#include "tools/host/driver/tcp_device_link.h"

#include <QNetworkProxy>

namespace tovik_host::driver {

TcpDeviceLink::TcpDeviceLink(const TcpAddress& address, const LinkSettings& settings)
    : address_(address)
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

void TcpDeviceLink::announceRelease()
{
    Q_EMIT socket_.EmitNotifyBeforeRelease();
}

DeviceLink::State TcpDeviceLink::state()
{
    if (socket_.state() == QAbstractSocket::ConnectedState)
        return State::up;
    const bool is_opening = socket_.state() == QAbstractSocket::HostLookupState ||
                            socket_.state() == QAbstractSocket::ConnectingState;
    return is_opening ? State::opening : State::down;
}

void TcpDeviceLink::startOpening()
{
    // What is left of a closing connection would refuse a new one.
    socket_.abort();
    socket_.connectToHost(address_.host, address_.port);
}

void TcpDeviceLink::giveUpOpening()
{
    socket_.abort();
}

void TcpDeviceLink::onError(QAbstractSocket::SocketError error)
{
    switch (error) {
    case QAbstractSocket::SocketTimeoutError:
        // Drivers wait for answers that do not come; the connection is well.
        break;
    case QAbstractSocket::ConnectionRefusedError:
        problem_ = QStringLiteral("connection refused; is the device's service running, and the "
                                  "port right?");
        break;
    case QAbstractSocket::HostNotFoundError:
        problem_ = QStringLiteral("no host of the name \"%1\" is known").arg(address_.host);
        break;
    case QAbstractSocket::RemoteHostClosedError:
        problem_ = QStringLiteral("the device has closed the connection");
        break;
    default:
        problem_ = socket_.errorString();
    }
}

} // namespace tovik_host::driver
