#include "tools/service/http/http_engine.h"

namespace tovik_service::http {

namespace {

constexpr std::size_t longest_body = 1 << 20;

// The handlers of the HTTP library get the request but not the connection.
thread_local Connection* current_connection = nullptr;

} // namespace

HttpEngine::HttpEngine()
{
    set_payload_max_length(longest_body);
}

bool HttpEngine::serveOne(Connection& connection, bool is_last)
{
    const auto set_up = [](httplib::Request& request) {
        // Replies shall be readable on the wire, so nothing is ever compressed.
        request.headers.erase("Accept-Encoding");
        // The library would read a body of unknown length until the client closes.
        if (!request.has_header("Content-Length") && !request.has_header("Transfer-Encoding"))
            request.set_header("Content-Length", "0");
    };
    bool closed = false;
    current_connection = &connection;
    const bool good = process_request(connection, is_last, closed, set_up);
    current_connection = nullptr;
    return good && !closed && !connection.isDropped() && !connection.last_request;
}

Connection& HttpEngine::current()
{
    return *current_connection;
}

} // namespace tovik_service::http
