#ifndef TOOLS_SERVICE_FAULTS_REPLY_FAULT_H
#define TOOLS_SERVICE_FAULTS_REPLY_FAULT_H

#include "tools/service/faults/fault.h"
#include "tools/service/plant/json.h"

#include <string>

namespace tovik_service::faults {

/// A reply as it goes out over HTTP.
struct HttpReply
{
    int status = 200;
    std::string body;
    std::string content_type = "application/json";
};

/// True for faults that answer in the service's place, so that the request has no effect.
bool replacesService(FaultKind kind);

/// The reply of a fault for which replacesService() holds.
HttpReply replacementReply(const FaultSpec& fault);

/// The service's reply with the fault worked into it; faults of the wire leave it alone.
HttpReply spoiltReply(const FaultSpec& fault, plant::Json json);

} // namespace tovik_service::faults

#endif
