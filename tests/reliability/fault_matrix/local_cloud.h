#ifndef TESTS_RELIABILITY_FAULT_MATRIX_LOCAL_CLOUD_H
#define TESTS_RELIABILITY_FAULT_MATRIX_LOCAL_CLOUD_H

#include "tools/service/http/front_end.h"
#include "tools/service/http/service_front.h"
#include "tools/service/http/tls_context.h"

#include <string>

namespace fault_matrix {

/// The simulated service inside this process, over HTTPS on a free port, with a plant of a few
/// items.
class LocalCloud
{
public:
    LocalCloud();
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

private:
    tovik_service::http::TlsSettings tlsSettings();

    tovik_service::http::EventLog log_;
    tovik_service::plant::Plant plant_;
    tovik_service::plant::TokenStore tokens_;
    tovik_service::faults::FaultTable faults_;
    tovik_service::http::RequestLog requests_;
    tovik_service::http::TlsContext tls_;
    tovik_service::http::ServiceFront service_;
    tovik_service::http::FrontEnd port_;
};

} // namespace fault_matrix

#endif
