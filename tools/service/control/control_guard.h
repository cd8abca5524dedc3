#ifndef TOOLS_SERVICE_CONTROL_CONTROL_GUARD_H
#define TOOLS_SERVICE_CONTROL_CONTROL_GUARD_H

#include <optional>
#include <string>

namespace tovik_service::control {

/// Who may ask the control port.
struct ControlAccess
{
    std::string host;     ///< the address that the port listens on, as it was given
    bool loopback = true; ///< no other computer can reach it
    std::string token;    ///< to be shown with every request; empty: none is needed
    std::string address;  ///< the host in digits, as browsers write it
};

/// What the decision about a control request depends on.
struct ControlRequest
{
    std::string method;
    std::string path;
    std::string host;          ///< the header, as are the next two
    std::string origin;        ///< only browsers send it
    std::string authorization; ///< "Bearer TOKEN"
};

/// Why a request is turned down.
struct ControlRefusal
{
    int status = 0;
    std::string text;
};

/// Keeps strangers away from the control port: other computers by a token, and pages of other web
/// sites, which run in the browser of somebody who may ask, by the headers that browsers send.
class ControlGuard
{
public:
    explicit ControlGuard(ControlAccess access);

    /// Nothing, if the request is welcome.
    std::optional<ControlRefusal> refusal(const ControlRequest& request) const;

private:
    bool namesThisComputer(const std::string& host_header) const;
    bool showsToken(const std::string& authorization) const;

    ControlAccess access_;
};

/// The token in a file, which holds nothing else; throws std::invalid_argument.
std::string readControlToken(const std::string& file);

} // namespace tovik_service::control

#endif
