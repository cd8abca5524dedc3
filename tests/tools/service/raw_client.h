#ifndef TESTS_TOOLS_SERVICE_RAW_CLIENT_H
#define TESTS_TOOLS_SERVICE_RAW_CLIENT_H

#include <string>
#include <vector>

/// A bare TCP connection to 127.0.0.1, for what HTTP clients do not tell.
class RawClient
{
public:
    explicit RawClient(int port);
    ~RawClient();
    RawClient(const RawClient&) = delete;
    RawClient& operator=(const RawClient&) = delete;

    bool isConnected() const { return connect_error_ == 0; }

    /// Why the connection failed, as errno; 0 if it did not.
    int connectError() const { return connect_error_; }

    void send(const std::string& bytes) const;

    /// Sends a request for the value of an item.
    void sendRequest(const std::string& body) const;

    /// How a connection ended: all bytes, and errno if it did not end properly.
    struct End
    {
        std::string bytes;
        std::vector<std::string> parts; ///< as they came out of the socket
        int error = 0;
    };
    End readToEnd() const;

    /// True if bytes or an end are there to be read.
    bool hasNews() const;

private:
    int socket_;
    int connect_error_ = 0;
};

#endif
