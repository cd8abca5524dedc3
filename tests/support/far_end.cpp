#include "tests/support/far_end.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

TcpFarEnd::TcpFarEnd(quint32 address) : address_(address)
{
    TcpFarEnd::comeBack();
}

TcpFarEnd::~TcpFarEnd()
{
    TcpFarEnd::hangUp();
    TcpFarEnd::leave();
}

void TcpFarEnd::leave()
{
    if (listener_ >= 0)
        close(listener_);
    listener_ = -1;
}

/// On the port of the first time.
void TcpFarEnd::comeBack()
{
    if (listener_ >= 0)
        return;
    listener_ = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    const int yes = 1; // connections that it has ended do not keep the port
    setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof(yes));
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(address_);
    address.sin_port = htons(port_);
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    socklen_t size = sizeof(address);
    if (bind(listener_, generic, size) != 0 || listen(listener_, 5) != 0 ||
        getsockname(listener_, generic, &size) != 0)
        qFatal("cannot listen on the loopback interface");
    port_ = ntohs(address.sin_port);
}

void TcpFarEnd::acceptConnection()
{
    const int accepted = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (accepted < 0)
        return;
    TcpFarEnd::hangUp();
    connection_ = accepted;
    ++connections_;
    const int yes = 1; // bytes that are sent one by one are to travel one by one
    setsockopt(connection_, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof(yes));
}

QByteArray TcpFarEnd::receive()
{
    acceptConnection();
    char buffer[65536];
    const ssize_t size = recv(connection_, buffer, sizeof(buffer), MSG_DONTWAIT);
    return size > 0 ? QByteArray(buffer, int(size)) : QByteArray();
}

void TcpFarEnd::send(const QByteArray& bytes)
{
    // A device does not care whether anybody listens.
    const ssize_t sent =
        ::send(connection_, bytes.constData(), size_t(bytes.size()), MSG_NOSIGNAL | MSG_DONTWAIT);
    Q_UNUSED(sent)
}

void TcpFarEnd::hangUp()
{
    if (connection_ >= 0)
        close(connection_);
    connection_ = -1;
}
