#include "tools/service/http/port.h"

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/time.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <system_error>

namespace tovik_service::http {

namespace {

constexpr int waiting_connections = 512;
constexpr int socket_timeout_seconds = 5;

template <typename Value>
void setOption(int descriptor, int level, int option, const Value& value)
{
    ::setsockopt(descriptor, level, option, &value, sizeof(value));
}

using AddressList = std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)>;

AddressList resolve(const std::string& host, int port)
{
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
    addrinfo* list = nullptr;
    const int error = ::getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &list);
    if (error != 0) {
        throw std::runtime_error("cannot use the host \"" + host + "\": " + ::gai_strerror(error) +
                                 "; give an address of this computer");
    }
    return {list, &::freeaddrinfo};
}

/// The address as one of its family, sockaddr_in or sockaddr_in6.
template <typename Family>
Family as(const sockaddr_storage& address)
{
    Family family{};
    std::memcpy(&family, &address, sizeof(family));
    return family;
}

} // namespace

// The reservation is a socket that is bound but never listens. It keeps the number ours
// while the listener is closed; connections to it are refused by the kernel.
Port::Port(const std::string& host, int number) : host_(host), number_(number)
{
    const AddressList found = resolve(host, number);
    std::memcpy(&address_, found->ai_addr, found->ai_addrlen);
    address_size_ = found->ai_addrlen;
    reservation_ = boundSocket();
    socklen_t size = sizeof(address_);
    ::getsockname(reservation_.get(), reinterpret_cast<sockaddr*>(&address_), &size);
    number_ = ntohs(address_.ss_family == AF_INET6 ? as<sockaddr_in6>(address_).sin6_port
                                                   : as<sockaddr_in>(address_).sin_port);
}

void Port::open()
{
    if (listener_.isOpen())
        return;
    FileDescriptor socket = boundSocket();
    if (::listen(socket.get(), waiting_connections) != 0) {
        throw std::runtime_error("cannot listen on " + hostAndPort(host_, number_) + ": " +
                                 std::generic_category().message(errno));
    }
    listener_ = std::move(socket);
}

void Port::close()
{
    listener_.reset();
}

FileDescriptor Port::accept()
{
    FileDescriptor socket(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (socket.isOpen()) {
        // Without this the second part of a reply waits for the client's delayed
        // acknowledgement, 40 ms.
        setOption(socket.get(), IPPROTO_TCP, TCP_NODELAY, 1);
        const timeval timeout{socket_timeout_seconds, 0};
        setOption(socket.get(), SOL_SOCKET, SO_RCVTIMEO, timeout);
        setOption(socket.get(), SOL_SOCKET, SO_SNDTIMEO, timeout);
    }
    return socket;
}

bool Port::isLoopback() const
{
    if (address_.ss_family == AF_INET6) {
        const auto address = as<sockaddr_in6>(address_);
        return IN6_IS_ADDR_LOOPBACK(&address.sin6_addr);
    }
    return (ntohl(as<sockaddr_in>(address_).sin_addr.s_addr) >> 24U) == IN_LOOPBACKNET;
}

std::string Port::address() const
{
    std::array<char, NI_MAXHOST> text{};
    const int error =
        ::getnameinfo(reinterpret_cast<const sockaddr*>(&address_), address_size_, text.data(),
                      static_cast<socklen_t>(text.size()), nullptr, 0, NI_NUMERICHOST);
    return error == 0 ? text.data() : host_;
}

FileDescriptor Port::boundSocket() const
{
    FileDescriptor socket(
        ::socket(address_.ss_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    setOption(socket.get(), SOL_SOCKET, SO_REUSEADDR, 1);
    if (::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address_), address_size_) != 0) {
        const int error = errno;
        throw std::runtime_error("cannot use " + hostAndPort(host_, number_) + ": " +
                                 std::generic_category().message(error) +
                                 (error == EADDRNOTAVAIL
                                      ? "; give an address of this computer"
                                      : "; choose another port, or 0 for a free one"));
    }
    return socket;
}

std::string hostAndPort(const std::string& host, int port)
{
    const bool brackets = host.find(':') != std::string::npos;
    return (brackets ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

} // namespace tovik_service::http
