#ifndef TOOLS_HOST_STATUS_TEXT_H
#define TOOLS_HOST_STATUS_TEXT_H

#include <QString>

namespace tovik_host {

/// Whose status it is: the same number says different things.
enum class StatusOf
{
    service, ///< Of a cloud driver.
    device   ///< Of a driver on the framework.
};

/// What the framework's drivers report for a link that is not open.
const int offline_status = 0x400CFFFF;

/// The status of an answer in words: "ok", "service error 3", or what else it says.
QString statusText(int status, StatusOf whose = StatusOf::service);
/// The status as the host sees it: "0", or eight hexadecimal digits behind "0x".
QString statusCode(int status);
/// Words and code together, for messages; the code is left out where the words have it already, and
/// behind "ok".
QString statusTextWithCode(int status, StatusOf whose);
/// Whether the service itself has refused something: neither success nor a failure on the way.
bool isServiceError(int status);

} // namespace tovik_host

#endif
