#ifndef TOOLS_CLOUD_SERVICE_FRONT_H
#define TOOLS_CLOUD_SERVICE_FRONT_H

#include "tools/cloud/event_log.h"
#include "tools/cloud/fault_table.h"
#include "tools/cloud/http_engine.h"
#include "tools/cloud/reply_fault.h"
#include "tools/cloud/request_log.h"
#include "tools/cloud/service.h"

#include <string>

namespace tovik_cloud {

/// The service as HTTP clients see it, faults included.
class ServiceFront
{
public:
    ServiceFront(Plant& plant, TokenStore& tokens, FaultTable& faults, RequestLog& requests,
                 EventLog& log);

    HttpEngine& engine() { return engine_; }

private:
    struct Exchange;

    void onPost(const httplib::Request& request, httplib::Response& response);
    void onError(const httplib::Request& request, httplib::Response& response);
    bool strike(Exchange& exchange);
    HttpReply answer(Exchange& exchange, const std::string& contentType);
    void refuseUnknown(const httplib::Request& request, httplib::Response& response, int status);
    void finish(const Exchange& exchange, int status);

    Plant& plant_;
    TokenStore& tokens_;
    FaultTable& faults_;
    RequestLog& requests_;
    EventLog& log_;
    Service service_;
    HttpEngine engine_;
};

} // namespace tovik_cloud

#endif
