#ifndef TOOLS_SERVICE_HTTP_SERVICE_FRONT_H
#define TOOLS_SERVICE_HTTP_SERVICE_FRONT_H

#include "tools/service/faults/fault_table.h"
#include "tools/service/faults/reply_fault.h"
#include "tools/service/http/event_log.h"
#include "tools/service/http/http_engine.h"
#include "tools/service/http/request_log.h"
#include "tools/service/plant/service.h"

#include <string>

namespace tovik_service::http {

/// The service as HTTP clients see it, faults included.
class ServiceFront
{
public:
    ServiceFront(plant::Plant& plant, plant::TokenStore& tokens, faults::FaultTable& faults,
                 RequestLog& requests, EventLog& log);

    HttpEngine& engine() { return engine_; }

private:
    struct Exchange;

    void onPost(const httplib::Request& request, httplib::Response& response);
    void onError(const httplib::Request& request, httplib::Response& response);
    bool strike(Exchange& exchange);
    faults::HttpReply answer(Exchange& exchange, const std::string& content_type);
    void refuseUnknown(const httplib::Request& request, httplib::Response& response, int status);
    void finish(const Exchange& exchange, int status);

    plant::Plant& plant_;
    plant::TokenStore& tokens_;
    faults::FaultTable& faults_;
    RequestLog& requests_;
    EventLog& log_;
    plant::Service service_;
    HttpEngine engine_;
};

} // namespace tovik_service::http

#endif
