#include "benchmarks/network/echo_device.h"

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <pty.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <thread>

namespace bench {

namespace {

const int patience = 10000; // ms

void answer(int descriptor)
{
    const char bytes[answer_size] = {};
    char received[256];
    ssize_t size = 0;
    ssize_t waiting = 0;
    while ((size = read(descriptor, received, sizeof received)) > 0) {
        for (waiting += size; waiting >= request_size; waiting -= request_size) {
            if (write(descriptor, bytes, sizeof bytes) != sizeof bytes)
                return;
        }
    }
}

void setNoDelay(int descriptor)
{
    const int on = 1;
    setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

void listenFor(int listener)
{
    for (;;) {
        const int descriptor = accept(listener, nullptr, nullptr);
        if (descriptor < 0)
            return;
        setNoDelay(descriptor);
        std::thread(answer, descriptor).detach();
    }
}

sockaddr_in loopback(int port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<unsigned short>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

[[noreturn]] void fail(const char* what)
{
    std::perror(what);
    std::exit(2);
}

} // namespace

EchoDevice::EchoDevice()
{
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = loopback(0);
    socklen_t size = sizeof address;
    if (bind(listener, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
        listen(listener, 10) != 0)
        fail("listening");
    getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
    port_ = ntohs(address.sin_port);
    std::thread(listenFor, listener).detach();
}

int EchoDevice::connectBare() const
{
    const int descriptor = socket(AF_INET, SOCK_STREAM, 0);
    const sockaddr_in address = loopback(port_);
    if (connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        fail("connecting");
    setNoDelay(descriptor);
    return descriptor;
}

std::string EchoDevice::serialLine()
{
    int far = -1;
    int near = -1;
    char name[100];
    termios raw;
    if (openpty(&far, &near, name, nullptr, nullptr) != 0)
        fail("a pseudo terminal");
    tcgetattr(near, &raw);
    cfmakeraw(&raw);
    tcsetattr(near, TCSANOW, &raw);
    std::thread(answer, far).detach();
    return name; // the near end stays open: without anybody at it the line would hang up
}

bool exchange(int descriptor)
{
    char bytes[answer_size];
    const char request[request_size] = {};
    if (write(descriptor, request, sizeof request) != sizeof request)
        return false;
    std::size_t received = 0;
    while (received < sizeof bytes) {
        pollfd input = {descriptor, POLLIN, 0};
        if (poll(&input, 1, patience) != 1)
            return false;
        const ssize_t size = read(descriptor, bytes + received, sizeof bytes - received);
        if (size <= 0)
            return false;
        received += std::size_t(size);
    }
    return true;
}

} // namespace bench
