#include "tools/service/http/http_engine.h"

namespace tovik_service::http {

namespace {

constexpr std::size_t longestBody = 1 << 20;

// The handlers of the HTTP library get the request but not the connection.
thread_local Connection* currentConnection = nullptr;

} // namespace

HttpEngine::HttpEngine()
{
    set_payload_max_length(longestBody);
}

bool HttpEngine::serveOne(Connection& connection, bool isLast)
{
    const auto setUp = [](httplib::Request& request) {
        // Replies shall be readable on the wire, so nothing is ever compressed.
        request.headers.erase("Accept-Encoding");
        // The library would read a body of unknown length until the client closes.
        if (!request.has_header("Content-Length") && !request.has_header("Transfer-Encoding")) {
            request.set_header("Content-Length", "0");
        }
    };
    bool closed = false;
    currentConnection = &connection;
    const bool good = process_request(connection, isLast, closed, setUp);
    currentConnection = nullptr;
    return good && !closed && !connection.isDropped() && !connection.lastRequest;
}

Connection& HttpEngine::current()
{
    return *currentConnection;
}

} // namespace tovik_service::http
