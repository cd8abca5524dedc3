#include "tests/tools/service/raw_client.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>

RawClient::RawClient(int port) : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    const timeval timeout{10, 0};
    ::setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof(timeout));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0)
        connect_error_ = errno;
}

RawClient::~RawClient()
{
    ::close(socket_);
}

void RawClient::send(const std::string& bytes) const
{
    [[maybe_unused]] const auto sent = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
}

void RawClient::sendRequest(const std::string& body) const
{
    send("POST /qlix_api/imonitor/dataitem/value HTTP/1.1\r\nHost: localhost\r\n"
         "Content-Type: application/json\r\nConnection: close\r\nContent-Length: " +
         std::to_string(body.size()) + "\r\n\r\n" + body);
}

RawClient::End RawClient::readToEnd() const
{
    End end;
    std::array<char, 4096> buffer{};
    for (;;) {
        const ssize_t count = ::recv(socket_, buffer.data(), buffer.size(), 0);
        if (count <= 0) {
            end.error = count < 0 ? errno : 0;
            return end;
        }
        end.parts.emplace_back(buffer.data(), static_cast<std::size_t>(count));
        end.bytes += end.parts.back();
    }
}

bool RawClient::hasNews() const
{
    pollfd entry{socket_, POLLIN, 0};
    return ::poll(&entry, 1, 0) > 0;
}
