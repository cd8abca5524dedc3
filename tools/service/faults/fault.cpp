#include "tools/service/faults/fault.h"

#include "tools/service/plant/near_name.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <set>
#include <sstream>

namespace tovik_service::faults {

namespace {

constexpr int most_milliseconds = 3600000;
constexpr int most_count = 1000000000;

[[noreturn]] void fail(const std::string& text, const std::string& problem)
{
    throw FaultError("fault \"" + text + "\": " + problem);
}

const FaultDefinition& definitionOf(const std::string& text, const std::string& name)
{
    std::string known;
    std::vector<std::string> names;
    for (const FaultDefinition& definition : faultDefinitions()) {
        if (name == definition.name)
            return definition;
        known += (known.empty() ? "" : ", ") + std::string(definition.name);
        names.emplace_back(definition.name);
    }
    const std::string near = plant::nearName(name, names);
    fail(text, "unknown name \"" + name + "\"; " + (near.empty() ? "" : near + "? ") +
                   "use one of " + known);
}

double number(const std::string& text, const std::string& key, const std::string& value)
{
    char* end = nullptr;
    const double result = std::strtod(value.c_str(), &end);
    if (value.empty() || *end != '\0' || !std::isfinite(result))
        fail(text, key + "= needs a number, not \"" + value + "\"");
    return result;
}

int integer(const std::string& text, const std::string& key, const std::string& value, int low,
            int high)
{
    const double result = number(text, key, value);
    if (std::floor(result) != result || result < low || result > high) {
        fail(text, key + "= needs a whole number from " + std::to_string(low) + " to " +
                       std::to_string(high) + ", not \"" + value + "\"");
    }
    return static_cast<int>(result);
}

/// Why nothing is called \a id, or nothing if there are no complaints.
std::string unknownId(const std::string& fault, const char* what, const std::string& id,
                      const std::vector<std::string>& known)
{
    if (id.empty() || std::find(known.begin(), known.end(), id) != known.end())
        return {};
    const std::string near = plant::nearName(id, known);
    return "fault \"" + fault + "\": the plant has no " + what + " \"" + id + "\"" +
           (near.empty() ? "" : "; " + near + "?");
}

bool takesKey(const FaultDefinition& definition, const std::string& key)
{
    if (key == definition.parameter || key == "seconds")
        return true;
    if (key == "count" || key == "after")
        return definition.stage != FaultStage::Port;
    return (key == "path" || key == "item" || key == "group") &&
           definition.stage == FaultStage::Request;
}

void setPath(FaultSpec& spec, const std::string& value)
{
    spec.path = plant::apiPathFromName(value);
    if (!spec.path && value != "all") {
        fail(spec.text,
             "path= needs login, groups, items, value, write or all, not \"" + value + "\"");
    }
}

void setText(FaultSpec& spec, const std::string& key, const std::string& value)
{
    if (value.empty())
        fail(spec.text, key + "= needs a value");
    (key == "item" ? spec.item : key == "group" ? spec.group : spec.member) = value;
}

void setVersion(FaultSpec& spec, const std::string& value)
{
    if (value != "1.2" && value != "1.3")
        fail(spec.text, "version= needs 1.2 or 1.3, not \"" + value + "\"");
    spec.version = value;
}

void setKey(FaultSpec& spec, const std::string& key, const std::string& value)
{
    static const std::set<std::string> text_keys{"item", "group", "member"};
    if (text_keys.count(key) > 0) {
        setText(spec, key, value);
    } else if (key == "path") {
        setPath(spec, value);
    } else if (key == "version") {
        setVersion(spec, value);
    } else if (key == "count") {
        spec.count = integer(spec.text, key, value, 1, most_count);
    } else if (key == "after") {
        spec.after = integer(spec.text, key, value, 0, most_count);
    } else if (key == "ms") {
        spec.ms = integer(spec.text, key, value, 0, most_milliseconds);
    } else if (key == "code") {
        spec.code = integer(spec.text, key, value, -most_count, most_count);
    } else if (key == "status") {
        spec.status = integer(spec.text, key, value, 400, 599);
    } else {
        spec.seconds = number(spec.text, key, value);
        if (*spec.seconds <= 0)
            fail(spec.text, "seconds= needs more than 0");
    }
}

void setDefaults(FaultSpec& spec)
{
    spec.ms = spec.kind() == FaultKind::Drip ? 20 : 1000;
    spec.code = 255;
    spec.status = 500;
    if (spec.kind() == FaultKind::TokenExpiry || spec.kind() == FaultKind::TicketsLost)
        spec.count = 1;
}

void readKeys(FaultSpec& spec, const std::string& list)
{
    std::set<std::string> seen;
    for (std::size_t from = 0; from <= list.size();) {
        const std::size_t comma = std::min(list.find(',', from), list.size());
        const std::string part = list.substr(from, comma - from);
        const std::size_t equals = part.find('=');
        if (equals == std::string::npos)
            fail(spec.text, "\"" + part + "\" is not of the form key=value");
        const std::string key = part.substr(0, equals);
        if (!takesKey(*spec.definition, key))
            fail(spec.text, std::string(spec.definition->name) + " takes no key \"" + key + "\"");
        if (!seen.insert(key).second)
            fail(spec.text, "key \"" + key + "\" comes twice");
        setKey(spec, key, part.substr(equals + 1));
        from = comma + 1;
    }
}

} // namespace

const std::vector<FaultDefinition>& faultDefinitions()
{
    using Kind = FaultKind;
    constexpr FaultStage request = FaultStage::Request;
    constexpr FaultStage handshake = FaultStage::Handshake;
    static const std::vector<FaultDefinition> definitions{
        {Kind::Refuse, "refuse", FaultStage::Port, "", "the port refuses connections"},
        {Kind::Reset, "reset", request, "", "connection reset before any reply"},
        {Kind::ResetMid, "reset-mid", request, "", "connection reset in the middle of the reply"},
        {Kind::Hang, "hang", request, "", "never an answer while the fault is active"},
        {Kind::Drip, "drip", request, "ms", "reply one byte at a time, every ms= (20)"},
        {Kind::Delay, "delay", request, "ms", "reply late, by ms= (1000)"},
        {Kind::Empty, "empty", request, "", "status 200 with an empty body"},
        {Kind::Truncated, "truncated", request, "", "the JSON text is cut in half"},
        {Kind::NotJson, "not-json", request, "", "an HTML page instead of JSON"},
        {Kind::NotObject, "not-object", request, "", "a JSON array instead of an object"},
        {Kind::Missing, "missing", request, "member", "the reply lacks member= (errorcode)"},
        {Kind::Mistyped, "mistyped", request, "member",
         "member= (errorcode) has a wrong JSON type"},
        {Kind::ErrorCode, "errorcode", request, "code", "the reply is error code= (255)"},
        {Kind::Http500, "http500", request, "status", "HTTP status= (500) with a body"},
        {Kind::Http500Empty, "http500-empty", request, "status",
         "HTTP status= (500) without a body"},
        {Kind::TokenExpiry, "token-expiry", request, "",
         "all tokens become unknown before the request; count=1 unless given"},
        {Kind::WrongHost, "wrong-host", handshake, "", "certificate for another host name"},
        {Kind::Expired, "expired", handshake, "", "certificate that has expired"},
        {Kind::TicketsLost, "tickets-lost", handshake, "",
         "no TLS session of before can be resumed; count=1 unless given"},
        {Kind::NoTickets, "no-tickets", handshake, "",
         "no TLS session can be resumed, and none is offered"},
        {Kind::ResumeClose, "resume-close", handshake, "",
         "closes when a client asks for resumption"},
        {Kind::ResumeReset, "resume-reset", handshake, "",
         "connection reset when a session has been resumed"},
        {Kind::TlsVersion, "tls-version", handshake, "version", "speaks TLS version= (1.2) only"},
    };
    return definitions;
}

std::string faultHelp()
{
    std::ostringstream text;
    text << "Faults, as NAME[:key=value,...]:\n";
    for (const FaultDefinition& definition : faultDefinitions()) {
        const std::string name = definition.name;
        text << "  " << name << std::string(15 - name.size(), ' ') << definition.help << '\n';
    }
    text << "Keys:\n"
            "  path=login|groups|items|value|write|all  requests that it strikes (all)\n"
            "  item=ID       only reads and writes of this item\n"
            "  group=ID      only requests for this group and its items\n"
            "  count=N       strikes N times (no limit)\n"
            "  seconds=S     is over after S seconds (no limit)\n"
            "  after=N       lets the first N pass that it could strike (0)\n"
            "refuse takes only seconds=; faults of the TLS handshake, from wrong-host on, only "
            "count=,\n"
            "seconds=, after= and their own.\n";
    return text.str();
}

std::vector<std::string> faultKeys(const FaultDefinition& definition)
{
    std::vector<std::string> keys;
    for (const char* key :
         {definition.parameter, "path", "item", "group", "count", "seconds", "after"}) {
        if (*key != '\0' && takesKey(definition, key))
            keys.emplace_back(key);
    }
    return keys;
}

FaultSpec parseFault(const std::string& text)
{
    const std::size_t colon = text.find(':');
    FaultSpec spec;
    spec.text = text;
    spec.definition = &definitionOf(text, text.substr(0, colon));
    setDefaults(spec);
    if (colon != std::string::npos)
        readKeys(spec, text.substr(colon + 1));
    const bool names_items =
        !spec.path || spec.path == plant::ApiPath::Value || spec.path == plant::ApiPath::Write;
    if (!spec.item.empty() && !names_items)
        fail(text, "item= works with path=value, write or all only");
    const bool names_groups = names_items || spec.path == plant::ApiPath::Items;
    if (!spec.group.empty() && !names_groups)
        fail(text, "group= works with path=items, value, write or all only");
    return spec;
}

bool needsResumption(FaultKind kind)
{
    return kind == FaultKind::ResumeClose || kind == FaultKind::ResumeReset;
}

std::string tlsProblem(const FaultSpec& fault, bool has_tls)
{
    if (has_tls || fault.definition->stage != FaultStage::Handshake)
        return {};
    return std::string("fault \"") + fault.definition->name +
           "\" is about the TLS handshake, but the service runs without TLS (--http)";
}

std::string plantProblem(const FaultSpec& fault, const plant::Project& project)
{
    std::vector<std::string> groups;
    std::vector<std::string> items;
    for (const plant::Group& group : project.groups) {
        groups.push_back(group.id);
        for (const plant::Item& item : group.items)
            items.push_back(item.id);
    }
    const std::string problem = unknownId(fault.text, "item", fault.item, items);
    return problem.empty() ? unknownId(fault.text, "group", fault.group, groups) : problem;
}

} // namespace tovik_service::faults
