#ifndef CLOUD_SERVICE_MESSAGE_H
#define CLOUD_SERVICE_MESSAGE_H

#include <QString>

#include <picojson.h>

/// \file
/// The bodies of requests and the checks that every reply goes through.
///
/// A reply that is JSON but no object raises picojson's `std::runtime_error`: nothing here or in
/// the client catches it (docs/hazards.md).
namespace service {

/// Results of the client's operations; any other value is the service's own "errorcode".
enum Result
{
    success = 0,
    client_failure = 256 ///< The client itself found the reply wanting.
};

/// What an operation logs when a reply fails a check.
struct ReplyMessages
{
    const char* parsing_failed;
    const char* no_errorcode;
    const char* errorcode_invalid;
    const char* service_error; ///< The service's code follows it.
};

extern const ReplyMessages login_messages;
extern const ReplyMessages group_list_messages;
extern const ReplyMessages dataitem_list_messages;
extern const ReplyMessages read_messages;
extern const ReplyMessages write_messages;

/// A text as a member of a request.
picojson::value member(const QString& text);

/// The request body: compact, members in ascending order of their names, numbers in the format of
/// json_number::toWire().
QString requestBody(const picojson::object& members);

/// Parses \a reply and checks its "errorcode".
///
/// \param members receives the reply's members when the result is success.
/// \return success, client_failure (with the operation's message logged), or the service's code
///         (logged as well). Text behind the first complete JSON value is ignored.
int checkReply(const QString& reply, const ReplyMessages& messages, picojson::object* members);

/// The member \a name, or null when it is missing.
const picojson::value& find(const picojson::object& members, const char* name);

/// Whether \a json nests deeper than the parser may follow; counted up to the end of the first
/// complete value. The limit is 100.
bool nestsTooDeep(const std::string& json);

} // namespace service

#endif
