#ifndef CLOUD_SERVICE_MESSAGE_H
#define CLOUD_SERVICE_MESSAGE_H

#include <QString>

#include <picojson.h>

#include <string>

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

/// How an operation ended, and why.
struct Outcome
{
    enum Reason
    {
        fine,
        no_answer,         ///< The network failed; the detail is Qt's words for it.
        not_json,          ///< The reply cannot be parsed, or nests too deep.
        no_errorcode,      ///< It has no "errorcode".
        errorcode_invalid, ///< Its "errorcode" is no number.
        refused,           ///< The result is the service's own code.
        member_missing,    ///< It lacks a member that the operation needs.
        member_invalid,    ///< Such a member is of the wrong kind.
        token_empty,       ///< A login without a token.
        other_kind,        ///< Success, but the value, a thing of the detail, is not the type's.
        unknown_type       ///< Success, but nobody knows the item's type.
    };

    Outcome() : result(success), reason(fine) {}
    Outcome(int a_result, Reason a_reason, const QString& a_detail)
        : result(a_result),
          reason(a_reason),
          detail(a_detail)
    {}

    int result; ///< success, client_failure, or the service's code.
    Reason reason;
    QString detail; ///< In words, without secrets: "Login: no errorcode". Empty for a service code.
};

/// One of the service's operations.
struct Operation
{
    const char* word;      ///< What the log calls it.
    const char* code_word; ///< What the log calls it in front of the service's code.
    const char* path;      ///< After the service's address.
};

extern const Operation login;
extern const Operation group_list;
extern const Operation dataitem_list;
extern const Operation read;
extern const Operation write;

/// Logs that \a problem was found in an operation's reply.
/// \param word the operation's, or one of its own for a single message
/// \return the outcome: client_failure, for \a reason
Outcome fail(const char* word, Outcome::Reason reason, const char* problem);

/// A text as a member of a request.
picojson::value member(const QString& text);

/// The request body: compact, members in ascending order of their names, numbers in the format of
/// json_number::toWire().
QString requestBody(const picojson::object& members);

/// Parses \a reply and checks its "errorcode"; what it finds wanting is logged.
///
/// \param members receives the reply's members when the result is success. Text after the first
///        complete JSON value is ignored.
Outcome checkReply(const std::string& reply, const Operation& operation, picojson::object* members);

/// The member \a name, or null when it is missing.
const picojson::value& find(const picojson::object& members, const char* name);

/// Whether \a json nests deeper than the parser may follow; counted up to the end of the first
/// complete value. The limit is 100.
bool nestsTooDeep(const std::string& json);

} // namespace service

#endif
