#include "tools/service/http/connection.h"

#include "tools/service/http/port.h"

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <openssl/err.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace tovik_service::http {

namespace {

int pollOnce(int descriptor, short events, int milliseconds)
{
    pollfd entry{descriptor, events, 0};
    int result = 0;
    do {
        result = ::poll(&entry, 1, milliseconds);
    } while (result < 0 && errno == EINTR);
    return result;
}

// A client that sends its request in parts waits for an acknowledgement between them, which
// the kernel delays by 40 ms otherwise. The kernel forgets the wish, so it is repeated.
void acknowledgeAtOnce(int descriptor)
{
    const int on = 1;
    ::setsockopt(descriptor, IPPROTO_TCP, TCP_QUICKACK, &on, sizeof(on));
}

/// Asks ::getpeername or ::getsockname.
template <typename Ask>
void readAddress(Ask ask, int descriptor, std::string& ip, int& port)
{
    sockaddr_storage address{};
    socklen_t size = sizeof(address);
    std::array<char, NI_MAXHOST> host{};
    std::array<char, NI_MAXSERV> service{};
    auto* bytes = reinterpret_cast<sockaddr*>(&address);
    if (ask(descriptor, bytes, &size) == 0 &&
        ::getnameinfo(bytes, size, host.data(), host.size(), service.data(), service.size(),
                      NI_NUMERICHOST | NI_NUMERICSERV) == 0) {
        ip = host.data();
        port = std::stoi(service.data());
    }
}

} // namespace

Connection::Connection(FileDescriptor socket, TlsContext* tls)
    : socket_(std::move(socket)),
      tls_(tls)
{}

std::string Connection::handshake()
{
    if (tls_ == nullptr)
        return {};
    session_ = tls_->newSession(socket_.get(), &plan_);
    if (!session_)
        return opensslError();
    ERR_clear_error();
    const int result = SSL_accept(session_.get());
    if (result == 1 && plan_.resets) {
        drop(true);
        return "reset by a fault";
    }
    if (result == 1)
        return {};
    tls_broken_ = true;
    if (plan_.closes)
        return "closed by a fault";
    return ERR_peek_error() == 0 ? "the client left or stayed silent" : opensslError();
}

bool Connection::waitForRequest(int milliseconds)
{
    headers_sent_ = false;
    answered = false;
    if (buffer_start_ < buffer_end_ || (session_ && SSL_pending(session_.get()) > 0))
        return true;
    acknowledgeAtOnce(socket_.get());
    return pollOnce(socket_.get(), POLLIN, milliseconds) > 0;
}

// POLLRDHUP alone: bytes that wait to be read are no reason to end a pause.
bool Connection::pause(int milliseconds)
{
    return pollOnce(socket_.get(), POLLRDHUP, milliseconds) == 0;
}

void Connection::drop(bool with_reset)
{
    dropped_ = true;
    reset_on_close_ = reset_on_close_ || with_reset;
}

std::optional<bool> Connection::isResumed() const
{
    if (!session_)
        return {};
    return SSL_session_reused(session_.get()) == 1;
}

void Connection::interrupt()
{
    const std::lock_guard<std::mutex> lock(close_mutex_);
    if (socket_.isOpen())
        ::shutdown(socket_.get(), SHUT_RDWR);
}

void Connection::close()
{
    if (reset_on_close_) {
        // Closing with a linger time of zero sends a reset instead of a farewell.
        const linger immediately{1, 0};
        ::setsockopt(socket_.get(), SOL_SOCKET, SO_LINGER, &immediately, sizeof(immediately));
    } else {
        if (session_ && !tls_broken_ && !dropped_) {
            ERR_clear_error();
            SSL_shutdown(session_.get());
        }
        ::shutdown(socket_.get(), SHUT_WR);
        discardIncoming();
    }
    session_.reset();
    const std::lock_guard<std::mutex> lock(close_mutex_);
    socket_.reset();
}

ssize_t Connection::read(char* data, std::size_t size)
{
    if (buffer_start_ == buffer_end_) {
        const ssize_t count = receive(buffer_.data(), buffer_.size());
        if (count <= 0)
            return count;
        buffer_start_ = 0;
        buffer_end_ = static_cast<std::size_t>(count);
    }
    const std::size_t count = std::min(size, buffer_end_ - buffer_start_);
    std::memcpy(data, buffer_.data() + buffer_start_, count);
    buffer_start_ += count;
    return static_cast<ssize_t>(count);
}

// The HTTP library writes all headers at once and the body after them.
ssize_t Connection::write(const char* data, std::size_t size)
{
    if (dropped_)
        return -1;
    if (reset_in_body_ && headers_sent_) {
        sendAll(data, size / 2);
        drop(true);
        return -1;
    }
    headers_sent_ = true;
    return drip_milliseconds_ < 0 ? sendAll(data, size) : sendDripping(data, size);
}

std::string Connection::clientAddress() const
{
    std::string ip;
    int port = 0;
    get_remote_ip_and_port(ip, port);
    return hostAndPort(ip, port);
}

void Connection::get_remote_ip_and_port(std::string& ip, int& port) const
{
    readAddress(::getpeername, socket_.get(), ip, port);
}

void Connection::get_local_ip_and_port(std::string& ip, int& port) const
{
    readAddress(::getsockname, socket_.get(), ip, port);
}

ssize_t Connection::receive(char* data, std::size_t size)
{
    acknowledgeAtOnce(socket_.get());
    if (session_) {
        ERR_clear_error();
        const int count = SSL_read(session_.get(), data, static_cast<int>(size));
        if (count <= 0) {
            tls_broken_ = SSL_get_error(session_.get(), count) != SSL_ERROR_ZERO_RETURN;
            return tls_broken_ ? -1 : 0;
        }
        return count;
    }
    ssize_t count = 0;
    do {
        count = ::recv(socket_.get(), data, size, 0);
    } while (count < 0 && errno == EINTR);
    return count;
}

ssize_t Connection::sendAll(const char* data, std::size_t size)
{
    for (std::size_t sent = 0; sent < size;) {
        ssize_t count = 0;
        if (session_) {
            ERR_clear_error();
            count = SSL_write(session_.get(), data + sent, static_cast<int>(size - sent));
        } else {
            count = ::send(socket_.get(), data + sent, size - sent, MSG_NOSIGNAL);
        }
        if (count <= 0) {
            tls_broken_ = true;
            drop(false);
            return -1;
        }
        sent += static_cast<std::size_t>(count);
    }
    return static_cast<ssize_t>(size);
}

ssize_t Connection::sendDripping(const char* data, std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i) {
        if (!pause(drip_milliseconds_) || sendAll(data + i, 1) != 1) {
            drop(false);
            return -1;
        }
    }
    return static_cast<ssize_t>(size);
}

// Unread bytes would turn the close into a reset, which can overtake the reply.
void Connection::discardIncoming()
{
    std::array<char, 4096> rest{};
    while (::recv(socket_.get(), rest.data(), rest.size(), MSG_DONTWAIT) > 0) {
    }
}

} // namespace tovik_service::http
