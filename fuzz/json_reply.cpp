#include "fuzz/json_reply.h"

#include "cloud/json_number.h"
#include "fuzz/target.h"

#include <nlohmann/json.hpp>

namespace fuzz {

namespace {

using Json = nlohmann::json;

const int nesting_limit = 100;

int depthOf(const picojson::value& json)
{
    int deepest = 0;
    if (json.is<picojson::array>()) {
        for (const picojson::value& element : json.get<picojson::array>())
            deepest = qMax(deepest, depthOf(element));
    } else if (json.is<picojson::object>()) {
        for (const auto& member : json.get<picojson::object>())
            deepest = qMax(deepest, depthOf(member.second));
    } else {
        return 0;
    }
    return deepest + 1;
}

/// What a parser of other people's makes of the reply: its errorcode, if it is an object with one.
/// It is stricter than picojson, so that nothing is said of what it refuses.
void compareWithOtherParser(const QByteArray& reply, int result)
{
    const Json json = Json::parse(reply.begin(), reply.end(), nullptr, false);
    if (!json.is_object())
        return;
    const auto errorcode = json.find("errorcode");
    const bool has_number = errorcode != json.end() && errorcode->is_number();
    const int expected =
        has_number ? json_number::toInt32(errorcode->get<double>()) : int(service::client_failure);
    require(result == expected, "the result is the errorcode that another parser finds");
}

} // namespace

bool takeReply(const QByteArray& reply, const service::Operation& operation,
               picojson::object* members)
{
    const std::string text = reply.toStdString();
    const QByteArray trimmed = reply.trimmed();
    int result = service::success;
    const bool mismatch =
        raisesTypeMismatch([&] { result = service::checkReply(text, operation, members).result; });
    require(!mismatch || !trimmed.startsWith('{'), "only a reply that is no object raises");
    if (mismatch)
        return false;
    if (!service::nestsTooDeep(text))
        compareWithOtherParser(reply, result);
    if (result != service::success)
        return false;
    const picojson::value& errorcode = service::find(*members, "errorcode");
    require(errorcode.is<double>() && json_number::toInt32(errorcode.get<double>()) == 0,
            "a reply that is taken has an errorcode of 0");
    require(depthOf(picojson::value(*members)) <= nesting_limit,
            "a reply that is taken nests no deeper than the limit");
    return true;
}

} // namespace fuzz
