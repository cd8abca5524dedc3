#ifndef TOOLS_CLOUD_CONTROL_API_H
#define TOOLS_CLOUD_CONTROL_API_H

#include "tools/cloud/control_guard.h"
#include "tools/cloud/event_log.h"
#include "tools/cloud/fault_table.h"
#include "tools/cloud/http_engine.h"
#include "tools/cloud/plant.h"
#include "tools/cloud/request_log.h"
#include "tools/cloud/token_store.h"

#include <cstdint>
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

/// The plain HTTP interface by which tests and the dashboard steer the service.
class ControlApi
{
public:
    explicit ControlApi(ControlTargets targets);

    HttpEngine& engine() { return engine_; }

    /// Says who may ask; to be set before the engine gets its first connection.
    void setAccess(const ControlAccess& access) { guard_ = ControlGuard(access); }

private:
    using Request = httplib::Request;
    using Response = httplib::Response;

    void addGuard();
    void addFaultRoutes();
    void addItemRoutes();
    void addOtherRoutes();
    void addErrorReplies();
    Json status();
    Json live(std::uint64_t lastRequest);
    Json addFault(const Request& request);
    void putItem(const Request& request, Response& response);

    ControlTargets targets_;
    double start_;
    double started_; ///< seconds since 1970
    ControlGuard guard_{ControlAccess{}};
    HttpEngine engine_;
};

/// Why a fault cannot be used without TLS, or nothing.
std::string tlsProblem(const FaultSpec& fault, bool hasTls);

} // namespace tovik_cloud

#endif
