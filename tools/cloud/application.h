#ifndef TOOLS_CLOUD_APPLICATION_H
#define TOOLS_CLOUD_APPLICATION_H

#include "tools/cloud/control_api.h"
#include "tools/cloud/front_end.h"
#include "tools/cloud/options.h"
#include "tools/cloud/service_front.h"

#include <memory>

namespace tovik_cloud {

/// The whole service: both ports and all that is behind them.
class Application
{
public:
    /// Reserves both ports; throws std::runtime_error.
    Application(const Options& options, Project project);

    /// Accepts connections and tells where.
    void start();

    /// Ends both ports, whatever their clients are doing.
    void stop();

private:
    std::unique_ptr<TlsContext> makeTls();
    CertificateChoice chooseCertificate();
    ControlTargets controlTargets();
    std::string serviceUrl() const;
    void admit();
    std::string controlUrl() const;
    void announce();
    void withdrawAddresses();

    Options options_;
    EventLog log_;
    Plant plant_;
    TokenStore tokens_;
    FaultTable faults_;
    RequestLog requests_;
    std::unique_ptr<TlsContext> tls_;
    ServiceFront service_;
    FrontEnd servicePort_;
    ControlApi control_;
    FrontEnd controlPort_;
    std::string newToken_; ///< of the control port, made because nobody gave one
};

} // namespace tovik_cloud

#endif
