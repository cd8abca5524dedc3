#ifndef TOOLS_CLOUD_HTTP_ENGINE_H
#define TOOLS_CLOUD_HTTP_ENGINE_H

#include "tools/cloud/connection.h"

namespace tovik_cloud {

/// The HTTP library without its own sockets: routes are set as usual, connections come
/// from outside, because faults need to reach below HTTP.
class HttpEngine : public httplib::Server
{
public:
    HttpEngine();

    /// Reads and answers one request; false if the connection is of no further use.
    bool serveOne(Connection& connection, bool isLast);

    /// The connection whose request this thread is answering.
    static Connection& current();
};

} // namespace tovik_cloud

#endif
