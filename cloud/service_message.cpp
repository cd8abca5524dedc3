#include "cloud/service_message.h"

#include "cloud/json_number.h"
#include "compat/text.h"

#include <QDebug>

#include <stdexcept>

namespace service {

const ReplyMessages login_messages = {
    "[TOVIK IoT] Login Error: parsing JSON failed!",
    "[TOVIK IoT] Login Error: no errorcode!",
    "[TOVIK IoT] Login Error: errorcode invalid!",
    "[TOVIK IoT] Login Error: ",
};
const ReplyMessages group_list_messages = {
    "[TOVIK IoT] GetGroupList Error: parsing JSON failed!",
    "[TOVIK IoT] GetGroupList Error: no errorcode!",
    "[TOVIK IoT] GetGroupList Error: errorcode invalid!",
    "[TOVIK IoT] GetGroupList Error: ",
};
const ReplyMessages dataitem_list_messages = {
    "[TOVIK IoT] GetDataitemList Error: parsing JSON failed!",
    "[TOVIK IoT] GetDataitemList Error: no errorcode!",
    "[TOVIK IoT] GetDataitemList Error: errorcode invalid!",
    "[TOVIK IoT] GetDataitemList Error: ",
};
const ReplyMessages read_messages = {
    "[TOVIK IoT] ReadDataitemValue Error: parsing JSON failed!",
    "[TOVIK IoT] ReadDataitemValue Error: no errorcode!",
    "[TOVIK IoT] ReadDataitemValue Error: errorcode invalid!",
    "[TOVIK IoT] ReadDataitemValue Error: ",
};
// The last message has another name than the others; people search their logs for it.
const ReplyMessages write_messages = {
    "[TOVIK IoT] WriteDataitemValue Error: parsing JSON failed!",
    "[TOVIK IoT] WriteDataitemValue Error: no errorcode!",
    "[TOVIK IoT] WriteDataitemValue Error: errorcode invalid!",
    "[TOVIK IoT] SetDataitemValue Error: ",
};

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
const char* behindString(const char* next, const char* end)
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

int checkReply(const QString& reply, const ReplyMessages& messages, picojson::object* members)
{
    picojson::value value;
    if (!parse(text::toLatin1(reply), &value)) {
        qDebug() << messages.parsing_failed;
        return client_failure;
    }
    members->swap(value.get<picojson::object>());
    const picojson::value& errorcode = find(*members, "errorcode");
    if (errorcode.is<picojson::null>()) {
        qDebug() << messages.no_errorcode;
        return client_failure;
    }
    if (!errorcode.is<double>()) {
        qDebug() << messages.errorcode_invalid;
        return client_failure;
    }
    const qint32 code = json_number::toInt32(errorcode.get<double>());
    if (code != success)
        qDebug() << messages.service_error << code;
    return code;
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
            next = behindString(next, end);
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
