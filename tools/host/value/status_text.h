#ifndef TOOLS_HOST_VALUE_STATUS_TEXT_H
#define TOOLS_HOST_VALUE_STATUS_TEXT_H

#include "tools/host/terminal/text.h"

#include "framework/result_code.h"

#include <QString>

namespace tovik_host::value {

/// Whose status it is: the same number says different things.
struct StatusOf
{
    static const StatusOf service; ///< Of a cloud driver.
    static const StatusOf device;  ///< Of a driver on the framework, without words of its own.

    /// Of a driver on the framework that has \a own words, or null.
    static constexpr StatusOf deviceWith(const result_code::Words* own) { return {true, own}; }

    /// What a device's status says; empty if neither the driver nor the framework has words for it.
    QString wordsFor(int status) const { return result_code::textOf(status, words); }

    bool operator==(const StatusOf& other) const
    {
        return is_device == other.is_device && words == other.words;
    }

    bool is_device;
    const result_code::Words* words;
};

inline constexpr StatusOf StatusOf::service{false, nullptr};
inline constexpr StatusOf StatusOf::device{true, nullptr};

/// What the tool reports for a link that is not open.
const int offline_status = result_code::not_supported;

/// The status of an answer in words: "ok", "service error 3", or what else it says.
QString statusText(int status, StatusOf whose = StatusOf::service);
/// The status as the host sees it: "0", or eight hexadecimal digits after "0x".
QString statusCode(int status);
/// "ok", or the code: for where there is no room for words.
QString statusWord(int status);
/// What stands where a value would, while there is none.
QString noValue();
/// Words and code together, for messages; the code is left out where the words have it already, and
/// after "ok".
QString statusTextWithCode(int status, StatusOf whose = StatusOf::service);
/// Whether the service itself has refused something: neither success nor a failure on the way.
bool isServiceError(int status);
/// What a user can look at when the service has refused a login.
QString loginAdvice();
/// A failed operation's result, as the client gives it, in words.
QString resultText(int result);

} // namespace tovik_host::value

#endif
