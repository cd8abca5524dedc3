#ifndef TESTS_SUPPORT_LOCAL_CLOUD_H
#define TESTS_SUPPORT_LOCAL_CLOUD_H

#include "tools/service/http/front_end.h"
#include "tools/service/http/service_front.h"
#include "tools/service/http/tls_context.h"

#include <string>
#include <vector>

/// The simulated service inside this process, over HTTPS on a free port, with a plant of a few
/// items.
class LocalCloud
{
public:
    /// \param tls "1.2", "1.3", or empty for both
    explicit LocalCloud(const std::string& tls = {});
    ~LocalCloud();

    std::string url() const;

    /// Puts a fault in force and returns its number.
    int addFault(const std::string& fault);
    /// How often a fault has struck.
    int applied(int fault) const;
    /// Ends all faults.
    void clearFaults();
    void expireTokens();

    /// Changes an item as its plant would.
    void set(const std::string& item, int value);
    int value(const std::string& item);

    /// Of every request so far, whether its connection resumed a TLS session.
    std::vector<bool> resumptions() const;

private:
    tovik_service::http::TlsSettings tlsSettings(const std::string& tls);

    tovik_service::http::EventLog log_;
    tovik_service::plant::Plant plant_;
    tovik_service::plant::TokenStore tokens_;
    tovik_service::faults::FaultTable faults_;
    tovik_service::http::RequestLog requests_;
    tovik_service::http::TlsContext tls_;
    tovik_service::http::ServiceFront service_;
    tovik_service::http::FrontEnd port_;
};

#endif
