#ifndef TOOLS_SERVICE_CONTROL_CONTROL_API_H
#define TOOLS_SERVICE_CONTROL_CONTROL_API_H

#include "tools/service/control/control_guard.h"
#include "tools/service/faults/fault_table.h"
#include "tools/service/http/event_log.h"
#include "tools/service/http/http_engine.h"
#include "tools/service/http/request_log.h"
#include "tools/service/plant/plant.h"
#include "tools/service/plant/token_store.h"

#include <cstdint>
#include <functional>
#include <string>

namespace tovik_service::control {

/// All that the control API looks at and turns.
struct ControlTargets
{
    plant::Plant& plant;
    plant::TokenStore& tokens;
    faults::FaultTable& faults;
    http::RequestLog& requests;
    http::EventLog& log;
    std::string url;                      ///< of the service
    bool has_tls = true;                  ///< false: faults of the certificate make no sense
    std::function<void()> faults_changed; ///< returns when the change is in effect
    std::function<void()> reload_plant;   ///< throws plant::ProjectError
};

/// The plain HTTP interface by which tests and the dashboard steer the service.
class ControlApi
{
public:
    explicit ControlApi(ControlTargets targets);

    http::HttpEngine& engine() { return engine_; }

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
    plant::Json status();
    plant::Json live(std::uint64_t last_request);
    plant::Json addFault(const Request& request);
    void putItem(const Request& request, Response& response);

    ControlTargets targets_;
    double start_;
    double started_; ///< seconds since 1970
    ControlGuard guard_{ControlAccess{}};
    http::HttpEngine engine_;
};

} // namespace tovik_service::control

#endif
