#ifndef TOOLS_SERVICE_APPLICATION_H
#define TOOLS_SERVICE_APPLICATION_H

#include "tools/service/control/control_api.h"
#include "tools/service/http/front_end.h"
#include "tools/service/http/service_front.h"
#include "tools/service/options.h"

#include <memory>

namespace tovik_service {

/// The whole service: both ports and all that is behind them.
class Application
{
public:
    /// Reserves both ports; throws std::runtime_error.
    Application(const Options& options, plant::Project project);

    /// Accepts connections and tells where.
    void start();

    /// Ends both ports, whatever their clients are doing.
    void stop();

private:
    std::unique_ptr<http::TlsContext> makeTls();
    http::CertificateChoice chooseCertificate();
    control::ControlTargets controlTargets();
    std::string serviceUrl() const;
    void admit();
    std::string controlUrl() const;
    void announce();
    void withdrawAddresses();

    Options options_;
    http::EventLog log_;
    plant::Plant plant_;
    plant::TokenStore tokens_;
    faults::FaultTable faults_;
    http::RequestLog requests_;
    std::unique_ptr<http::TlsContext> tls_;
    http::ServiceFront service_;
    http::FrontEnd service_port_;
    control::ControlApi control_;
    http::FrontEnd control_port_;
    std::string new_token_; ///< of the control port, made because nobody gave one
};

} // namespace tovik_service

#endif
