#include "tools/service/faults/fault.h"

#include <sstream>

namespace tovik_service::faults {

const std::vector<FaultDefinition>& faultDefinitions()
{
    using Kind = FaultKind;
    constexpr FaultStage request = FaultStage::Request;
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
        {Kind::WrongHost, "wrong-host", FaultStage::Handshake, "",
         "certificate for another host name"},
        {Kind::Expired, "expired", FaultStage::Handshake, "", "certificate that has expired"},
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
            "refuse takes only seconds=; wrong-host and expired take only count=, seconds= and "
            "after=.\n";
    return text.str();
}

} // namespace tovik_service::faults
