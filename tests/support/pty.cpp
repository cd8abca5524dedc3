#include "tests/support/pty.h"

#include <QFile>
#include <QLockFile>

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <unistd.h>

namespace {

const int lock_patience = 30000; // ms

/// A serial port marks its device as in use by a file of the device's name, which it removes when
/// it has closed the device. The kernel may give the name away in between.
void waitForFormerOwner(const QString& port_name)
{
    QString name = port_name;
    name.remove(QLatin1String("/dev/")).replace(QLatin1Char('/'), QLatin1Char('_'));
    QLockFile(QLatin1String("/var/lock/LCK..") + name).tryLock(lock_patience);
}

} // namespace

Pty::Pty(Kind kind) : descriptor_(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC))
{
    if (descriptor_ < 0 || grantpt(descriptor_) != 0 || unlockpt(descriptor_) != 0)
        return;
    const char* const name = ptsname(descriptor_);
    port_name_ = QFile::decodeName(name);
    port_ = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (kind == Line) {
        termios settings = attributes();
        cfmakeraw(&settings);
        tcsetattr(port_, TCSANOW, &settings);
    }
    waitForFormerOwner(port_name_);
}

Pty::~Pty()
{
    close();
    if (port_ >= 0)
        ::close(port_);
}

termios Pty::attributes() const
{
    termios attributes = {};
    tcgetattr(descriptor_, &attributes);
    return attributes;
}

bool Pty::send(const QByteArray& bytes)
{
    return write(descriptor_, bytes.constData(), size_t(bytes.size())) == bytes.size();
}

bool Pty::sendAll(const QByteArray& bytes)
{
    for (int sent = 0; sent < bytes.size();) {
        const ssize_t size =
            write(descriptor_, bytes.constData() + sent, size_t(bytes.size() - sent));
        if (size > 0) {
            sent += int(size);
        } else if (errno != EAGAIN && errno != EINTR) {
            return false;
        } else {
            pollfd polled = {descriptor_, POLLOUT, 0};
            poll(&polled, 1, 100);
        }
    }
    return true;
}

QByteArray Pty::take()
{
    QByteArray bytes;
    char buffer[4096];
    for (;;) {
        const ssize_t size = read(descriptor_, buffer, sizeof(buffer));
        if (size <= 0)
            return bytes;
        bytes.append(buffer, int(size));
    }
}

void Pty::close()
{
    if (descriptor_ >= 0)
        ::close(descriptor_);
    descriptor_ = -1;
}
