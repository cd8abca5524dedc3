#ifndef TOOLS_HOST_STATUS_TEXT_H
#define TOOLS_HOST_STATUS_TEXT_H

#include <QString>

namespace tovik_host {

/// The status of an answer in words: "ok", "service error 3", or what else it says.
QString statusText(int status);
/// The status as the host sees it: "0", or eight hexadecimal digits behind "0x".
QString statusCode(int status);
/// Whether the service itself has refused something: neither success nor a failure on the way.
bool isServiceError(int status);

} // namespace tovik_host

#endif
