#ifndef TESTS_RELIABILITY_FAULT_MATRIX_LOCAL_CLOUD_H
#define TESTS_RELIABILITY_FAULT_MATRIX_LOCAL_CLOUD_H

#include "tools/cloud/front_end.h"
#include "tools/cloud/service_front.h"
#include "tools/cloud/tls_context.h"

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
    tovik_cloud::TlsSettings tlsSettings();

    tovik_cloud::EventLog log_;
    tovik_cloud::Plant plant_;
    tovik_cloud::TokenStore tokens_;
    tovik_cloud::FaultTable faults_;
    tovik_cloud::RequestLog requests_;
    tovik_cloud::TlsContext tls_;
    tovik_cloud::ServiceFront service_;
    tovik_cloud::FrontEnd port_;
};

} // namespace fault_matrix

#endif
