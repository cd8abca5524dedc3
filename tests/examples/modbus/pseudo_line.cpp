#include "tests/examples/modbus/pseudo_line.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

PseudoLine::PseudoLine()
    : descriptor_(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)),
      port_(-1)
{
    if (descriptor_ < 0 || grantpt(descriptor_) != 0 || unlockpt(descriptor_) != 0)
        qFatal("no pseudo terminal");
    const char* name = ptsname(descriptor_);
    port_name_ = QFile::decodeName(name);
    port_ = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    termios settings = {};
    tcgetattr(port_, &settings);
    cfmakeraw(&settings);
    tcsetattr(port_, TCSANOW, &settings);
}

PseudoLine::~PseudoLine()
{
    close();
    ::close(port_);
}

void PseudoLine::close()
{
    if (descriptor_ >= 0)
        ::close(descriptor_);
    descriptor_ = -1;
}

PortPair::PortPair() : thread_([this] { pump(); }) {}

PortPair::~PortPair()
{
    stop_ = true;
    thread_.join();
}

void PortPair::pump()
{
    const int ends[] = {lines_[0].descriptor(), lines_[1].descriptor()};
    char buffer[4096];
    while (!stop_) {
        pollfd polled[] = {{ends[0], POLLIN, 0}, {ends[1], POLLIN, 0}};
        poll(polled, 2, 100);
        for (int from = 0; from < 2; ++from) {
            const ssize_t size = read(ends[from], buffer, sizeof(buffer));
            if (size > 0)
                writeAll(ends[1 - from], buffer, int(size));
        }
    }
}

bool writeAll(int descriptor, const char* bytes, int size)
{
    while (size > 0) {
        const ssize_t written = write(descriptor, bytes, size_t(size));
        if (written < 0 && errno != EAGAIN && errno != EINTR)
            return false;
        if (written <= 0) {
            pollfd polled = {descriptor, POLLOUT, 0};
            poll(&polled, 1, 100);
            continue;
        }
        bytes += written;
        size -= int(written);
    }
    return true;
}
