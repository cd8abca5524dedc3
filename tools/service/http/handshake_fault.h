#ifndef TOOLS_SERVICE_HTTP_HANDSHAKE_FAULT_H
#define TOOLS_SERVICE_HTTP_HANDSHAKE_FAULT_H

#include "tools/service/faults/fault_table.h"
#include "tools/service/http/event_log.h"
#include "tools/service/http/tls_context.h"

namespace tovik_service::http {

/// How a handshake goes with the faults in force; tells the log if one strikes.
HandshakePlan planHandshake(faults::FaultTable& faults, EventLog& log, bool is_resumption);

} // namespace tovik_service::http

#endif
