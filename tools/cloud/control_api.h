#ifndef TOOLS_CLOUD_CONTROL_API_H
#define TOOLS_CLOUD_CONTROL_API_H

#include "tools/cloud/event_log.h"
#include "tools/cloud/fault_table.h"
#include "tools/cloud/http_engine.h"
#include "tools/cloud/plant.h"
#include "tools/cloud/request_log.h"
#include "tools/cloud/token_store.h"

#include <functional>
#include <string>

namespace tovik_cloud {

/// All that the control API looks at and turns.
struct ControlTargets
{
    Plant& plant;
    TokenStore& tokens;
    FaultTable& faults;
    RequestLog& requests;
    EventLog& log;
    std::string url;                     ///< of the service
    bool hasTls = true;                  ///< false: faults of the certificate make no sense
    std::function<void()> faultsChanged; ///< returns when the change is in effect
};

/// The plain HTTP interface by which tests steer the service.
class ControlApi
{
public:
    explicit ControlApi(ControlTargets targets);

    HttpEngine& engine() { return engine_; }

private:
    using Request = httplib::Request;
    using Response = httplib::Response;

    void addFaultRoutes();
    void addItemRoutes();
    void addOtherRoutes();
    void addErrorReplies();
    Json status();
    Json addFault(const Request& request);
    void putItem(const Request& request, Response& response);

    ControlTargets targets_;
    double start_;
    HttpEngine engine_;
};

/// Why a fault cannot be used without TLS, or nothing.
std::string tlsProblem(const FaultSpec& fault, bool hasTls);

} // namespace tovik_cloud

#endif
