#include "tests/twin/far_side.h"

#include <QByteArray>
#include <QtGlobal>

#include <arpa/inet.h>
#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

namespace {

// Microseconds between the parts of an answer that comes in parts.
const int pause = 20000;
const int long_pause = 850000;

void send(int descriptor, const char* bytes)
{
    const ssize_t size = ssize_t(qstrlen(bytes));
    if (write(descriptor, bytes, size_t(size)) != size)
        qWarning("the far side cannot answer");
}

/// Answers one request by its first letter.
/// \return whether the line is to stay
bool answer(int descriptor, const QByteArray& request)
{
    switch (request.at(0)) {
    case 'g':
        send(descriptor, "abcd");
        return true;
    case 's':
        send(descriptor, "ef");
        usleep(pause);
        send(descriptor, "gh");
        return true;
    case 'p':
        send(descriptor, "be");
        usleep(long_pause);
        send(descriptor, "fore");
        return true;
    case 'r':
        send(descriptor, "!xyz");
        return true;
    case 't':
        send(descriptor, "twice as");
        return true;
    case 'l':
        send(descriptor, "longer than any other");
        return true;
    case 'h':
        return false;
    default:
        return true;
    }
}

/// Answers lines until the far end goes, or is told to hang up.
void converse(int descriptor, const std::atomic<bool>* is_ending)
{
    QByteArray request;
    for (;;) {
        pollfd waiting = {descriptor, POLLIN, 0};
        if (poll(&waiting, 1, 50) == 0) {
            if (is_ending && *is_ending)
                break;
            continue;
        }
        char byte = 0;
        const ssize_t size = read(descriptor, &byte, 1);
        if (size <= 0 && !is_ending)
            break;
        if (size <= 0) { // a pty that nobody has open
            if (*is_ending)
                break;
            usleep(1000);
            continue;
        }
        if (byte != '\n') {
            request.append(byte);
            continue;
        }
        if (!request.isEmpty() && !answer(descriptor, request))
            break;
        request.clear();
    }
    close(descriptor);
}

} // namespace

TcpFarSide::TcpFarSide() : listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)), port_(0)
{
    sockaddr_in address = sockaddr_in();
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    sockaddr* const any = reinterpret_cast<sockaddr*>(&address);
    socklen_t size = sizeof address;
    if (bind(listener_, any, size) != 0 || listen(listener_, 5) != 0 ||
        getsockname(listener_, any, &size) != 0)
        qFatal("the far side cannot listen");
    port_ = ntohs(address.sin_port);
    thread_ = std::thread(&TcpFarSide::serve, this);
}

TcpFarSide::~TcpFarSide()
{
    shutdown(listener_, SHUT_RDWR);
    thread_.join();
    close(listener_);
}

void TcpFarSide::serve() const
{
    for (;;) {
        const int connection = accept(listener_, 0, 0);
        if (connection < 0)
            return;
        converse(connection, 0);
    }
}

PtyFarSide::PtyFarSide() : is_ending_(false) {}

PtyFarSide::~PtyFarSide()
{
    end();
}

QString PtyFarSide::renew()
{
    end();
    const int descriptor = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0 || grantpt(descriptor) != 0 || unlockpt(descriptor) != 0)
        qFatal("no pty");
    termios settings;
    tcgetattr(descriptor, &settings);
    cfmakeraw(&settings);
    tcsetattr(descriptor, TCSANOW, &settings);
    const QString name = QString::fromLocal8Bit(ptsname(descriptor));
    is_ending_ = false;
    thread_ = std::thread(converse, descriptor, &is_ending_);
    return name;
}

void PtyFarSide::end()
{
    is_ending_ = true;
    if (thread_.joinable())
        thread_.join();
}
