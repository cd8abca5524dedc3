#include "cloud/service_message.h"

#include "cloud/json_number.h"
#include "compat/text.h"

#include <QDebug>

#include <stdexcept>

namespace service {

const Operation login = {"Login", "Login", "/qlix_api/auth/login"};
const Operation group_list = {"GetGroupList", "GetGroupList", "/qlix_api/imonitor/group/list"};
const Operation dataitem_list = {"GetDataitemList", "GetDataitemList",
                                 "/qlix_api/imonitor/group/dataitems"};
const Operation read = {"ReadDataitemValue", "ReadDataitemValue",
                        "/qlix_api/imonitor/dataitem/value"};
// The word in front of a code is another one; people search their logs for it.
const Operation write = {"WriteDataitemValue", "SetDataitemValue",
                         "/qlix_api/imonitor/dataitem/setValue"};

namespace {

const int nesting_limit = 100;

/// Parses the first value of \a json; false for what the parser refuses or cannot hold.
bool parse(const std::string& json, picojson::value* value)
{
    if (nestsTooDeep(json))
        return false;
    try {
        return picojson::parse(*value, json).empty();
    } catch (const std::overflow_error&) {
        // A number beyond a double is JSON all the same; the parser throws while it builds it.
        return false;
    }
}

/// \param next what follows the opening quote
const char* afterString(const char* next, const char* end)
{
    for (; next < end; ++next) {
        if (*next == '"')
            return next + 1;
        if (*next == '\\')
            ++next;
    }
    return end;
}

} // namespace

picojson::value member(const QString& text)
{
    return picojson::value(text::toLatin1(text));
}

QString requestBody(const picojson::object& members)
{
    std::string body("{");
    for (picojson::object::const_iterator it = members.begin(); it != members.end(); ++it) {
        if (it != members.begin())
            body += ',';
        body += picojson::value(it->first).serialize();
        body += ':';
        // picojson writes the shortest text that reads back; the service expects fixed decimals.
        body += it->second.is<double>() ? json_number::toWire(it->second.get<double>())
                                        : it->second.serialize();
    }
    body += '}';
    return text::fromLatin1(body);
}

Outcome fail(const char* word, Outcome::Reason reason, const char* problem)
{
    qDebug() << (QByteArray("[TOVIK IoT] ") + word + " Error: " + problem + '!').constData();
    return Outcome(client_failure, reason,
                   QString::fromLatin1("%1: %2").arg(QLatin1String(word), QLatin1String(problem)));
}

Outcome checkReply(const std::string& reply, const Operation& operation, picojson::object* members)
{
    picojson::value value;
    if (!parse(reply, &value))
        return fail(operation.word, Outcome::not_json, "parsing JSON failed");
    members->swap(value.get<picojson::object>());
    const picojson::value& errorcode = find(*members, "errorcode");
    if (errorcode.is<picojson::null>())
        return fail(operation.word, Outcome::no_errorcode, "no errorcode");
    if (!errorcode.is<double>())
        return fail(operation.word, Outcome::errorcode_invalid, "errorcode invalid");
    const qint32 code = json_number::toInt32(errorcode.get<double>());
    if (code == success)
        return Outcome();
    qDebug() << (QByteArray("[TOVIK IoT] ") + operation.code_word + " Error: ").constData() << code;
    return Outcome(code, Outcome::refused, QString());
}

const picojson::value& find(const picojson::object& members, const char* name)
{
    static const picojson::value missing;
    const picojson::object::const_iterator it = members.find(name);
    return it == members.end() ? missing : it->second;
}

bool nestsTooDeep(const std::string& json)
{
    const std::string::size_type first = json.find_first_not_of(" \t\n\r");
    const char* const end = json.data() + json.size();
    int depth = 0;
    for (const char* next = json.data() + qMin(first, json.size()); next < end;) {
        switch (*next++) {
        case '"':
            next = afterString(next, end);
            break;
        case '{':
        case '[':
            if (++depth > nesting_limit)
                return true;
            break;
        case '}':
        case ']':
            --depth;
            break;
        default:
            break;
        }
        if (depth <= 0)
            return false;
    }
    return false;
}

} // namespace service
