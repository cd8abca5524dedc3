#include "tests/compat/pty.h"

#include <QFile>

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

Pty::Pty() : descriptor_(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC))
{
    if (descriptor_ >= 0 && grantpt(descriptor_) == 0 && unlockpt(descriptor_) == 0)
        port_name_ = QFile::decodeName(ptsname(descriptor_));
}

Pty::~Pty()
{
    close();
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
