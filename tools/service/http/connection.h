#ifndef TOOLS_SERVICE_HTTP_CONNECTION_H
#define TOOLS_SERVICE_HTTP_CONNECTION_H

#include "tools/service/http/file_descriptor.h"
#include "tools/service/http/tls_context.h"

#include <httplib.h>

#include <array>
#include <cstddef>
#include <mutex>
#include <optional>
#include <string>

namespace tovik_service::http {

/// One client's connection, plain or TLS, which can be made to misbehave.
/// Belongs to one thread; only interrupt() may be called from others.
class Connection : public httplib::Stream
{
public:
    /// Speaks TLS unless the context is null.
    Connection(FileDescriptor socket, TlsContext* tls);

    /// Completes the TLS handshake; an empty text means success.
    std::string handshake();

    /// Waits for the client's next request; false if it stays silent or leaves.
    bool waitForRequest(int milliseconds);

    /// Waits this long; false if the client left or the service stops.
    bool pause(int milliseconds);

    /// Sends nothing more, and closes with a reset if asked to.
    void drop(bool with_reset);

    /// Sends every reply byte on its own with this pause before it.
    void dripReplies(int milliseconds) { drip_milliseconds_ = milliseconds; }

    /// Resets the connection half way through the body of the reply.
    void resetInBody() { reset_in_body_ = true; }

    bool isDropped() const { return dropped_; }

    /// Whether a TLS session of before was resumed; nothing without TLS.
    std::optional<bool> isResumed() const;

    /// The client's address and port, as in a URL.
    std::string clientAddress() const;

    /// Makes all waiting end soon; safe from any thread.
    void interrupt();

    /// Says goodbye as properly as the faults allow, and closes.
    void close();

    /// Set by whoever has answered the current request.
    bool answered = false;

    /// Set by whoever has left the body of the current request unread.
    bool last_request = false;

    bool is_readable() const override { return !dropped_; }
    bool is_writable() const override { return !dropped_; }
    ssize_t read(char* data, std::size_t size) override;
    ssize_t write(const char* data, std::size_t size) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string& ip, int& port) const override;
    socket_t socket() const override { return socket_.get(); }

private:
    ssize_t receive(char* data, std::size_t size);
    ssize_t sendAll(const char* data, std::size_t size);
    ssize_t sendDripping(const char* data, std::size_t size);
    void discardIncoming();

    FileDescriptor socket_;
    std::mutex close_mutex_;
    TlsContext* tls_;
    HandshakePlan plan_;
    TlsContext::SessionPointer session_;
    bool tls_broken_ = false;
    bool dropped_ = false;
    bool reset_on_close_ = false;
    bool reset_in_body_ = false;
    bool headers_sent_ = false;
    int drip_milliseconds_ = -1;
    std::array<char, 4096> buffer_{};
    std::size_t buffer_start_ = 0;
    std::size_t buffer_end_ = 0;
};

} // namespace tovik_service::http

#endif
