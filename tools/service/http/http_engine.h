#ifndef TOOLS_SERVICE_HTTP_HTTP_ENGINE_H
#define TOOLS_SERVICE_HTTP_HTTP_ENGINE_H

#include "tools/service/http/connection.h"

namespace tovik_service::http {

/// The HTTP library without its own sockets: routes are set as usual, connections come
/// from outside, because faults need to reach below HTTP.
class HttpEngine : public httplib::Server
{
public:
    HttpEngine();

    /// Reads and answers one request; false if the connection is of no further use.
    bool serveOne(Connection& connection, bool is_last);

    /// The connection whose request this thread is answering.
    static Connection& current();
};

} // namespace tovik_service::http

#endif
