#ifndef TOOLS_SERVICE_HTTP_PORT_H
#define TOOLS_SERVICE_HTTP_PORT_H

#include "tools/service/http/file_descriptor.h"

#include <sys/socket.h>

#include <string>

namespace tovik_service::http {

/// A TCP port that can be opened and closed again and stays reserved in between.
class Port
{
public:
    /// Reserves the port, or a free one for 0; throws std::runtime_error.
    Port(const std::string& host, int number);

    /// Accepts connections from now on; throws std::runtime_error.
    void open();

    /// Refuses connections from now on.
    void close();

    /// Takes a waiting connection, if there is one.
    FileDescriptor accept();

    /// The listening socket, -1 while closed.
    int descriptor() const { return listener_.get(); }
    int number() const { return number_; }

    /// True if no other computer can reach the port.
    bool isLoopback() const;

    /// The address in digits, however the host was given.
    std::string address() const;

private:
    FileDescriptor boundSocket() const;

    std::string host_;
    int number_;
    sockaddr_storage address_{};
    socklen_t address_size_ = 0;
    FileDescriptor reservation_;
    FileDescriptor listener_;
};

/// "host:port" for a URL; addresses with colons get brackets.
std::string hostAndPort(const std::string& host, int port);

} // namespace tovik_service::http

#endif
