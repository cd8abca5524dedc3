#include "fuzz/input.h"
#include "fuzz/json_reply.h"
#include "fuzz/target.h"

#include "compat/text.h"

namespace fuzz {

namespace {

/// Members that were received, sent as a request: all but numbers come back as they were.
void sendMembers(const picojson::object& members)
{
    const QString body = service::requestBody(members);
    picojson::value read;
    require(picojson::parse(read, text::toLatin1(body)).empty(), "a request is JSON");
    const picojson::object& sent = read.get<picojson::object>();
    require(sent.size() == members.size(), "a request has all members");
    for (const auto& member : members) {
        const picojson::value& other = service::find(sent, member.first.c_str());
        // A name with a NUL in it is not found by what stands before that.
        if (!member.second.is<double>() && member.first.find('\0') == std::string::npos)
            require(other == member.second, "a member of a request is as it was given");
    }
}

} // namespace

// One byte for the operation, then the reply. Of a login's reply the token is taken, and becomes a
// member of the next request; of a write's nothing but the check.
void runReply(const QByteArray& input)
{
    Input next(input);
    const bool login = next.flag();
    picojson::object members;
    if (!takeReply(next.rest(), login ? service::login : service::write, &members))
        return;
    const picojson::value& token = service::find(members, "token");
    if (token.is<std::string>()) {
        const QString kept = text::fromLatin1(token.get<std::string>());
        require(service::member(kept) == token, "a token goes out as it came in");
    }
    sendMembers(members);
}

} // namespace fuzz
