#include "tests/reliability/histories/reply.h"

#include <iterator>

namespace replies {

namespace {

const char* const paths[] = {
    "/qlix_api/auth/login", "/qlix_api/imonitor/group/list", "/qlix_api/imonitor/group/dataitems",
    "/qlix_api/imonitor/dataitem/value", "/qlix_api/imonitor/dataitem/setValue"};

const Json values[] = {
    {"1", Json::number, 1},
    {"true", Json::flag, 1},
    {"\"1A\"", Json::text, 0, "1A"},
    {"-2", Json::number, -2},
    {"false", Json::flag, 0},
    {"12.5", Json::number, 12.5},
    {"70000.9", Json::number, 70000.9},
    {"3e10", Json::number, 3e10},
    {"-3e10", Json::number, -3e10},
    {"\"\"", Json::text, 0, ""},
    {"\"12\"", Json::text, 0, "12"},
    {"1234", Json::number, 1234},
    {"[1]", Json::other},
    {"{}", Json::other},
};

struct Form
{
    const char* rest; ///< What follows the error code 0.
    Reply::Own own;
};

const Form odd_logins[] = {{"", Reply::missing},
                           {R"(,"token":null)", Reply::missing},
                           {R"(,"token":5)", Reply::invalid},
                           {R"(,"token":"")", Reply::no_token}};
const Form odd_groups[] = {{R"(,"groups":[])", Reply::missing},
                           {R"(,"Number":1)", Reply::missing},
                           {R"(,"Number":"1","groups":[])", Reply::invalid},
                           {R"(,"Number":1,"groups":{})", Reply::no_list}};
const Form odd_items[] = {{R"(,"dataitems":[])", Reply::missing},
                          {R"(,"Number":1)", Reply::missing},
                          {R"(,"Number":true,"dataitems":[])", Reply::invalid},
                          {R"(,"Number":1,"dataitems":"")", Reply::no_list}};
const Form odd_reads[] = {{"", Reply::missing}, {R"(,"value":null)", Reply::missing}};
const Form odd_writes[] = {{R"(,"value":7)", Reply::fine}};

const int codes[] = {1, 3, 4, 7, 8, 9, 15, 255, 256, 2, -1, 100000};

template <typename T, std::size_t size>
const T& choose(const T (&of)[size], int variant)
{
    return of[std::size_t(variant) % size];
}

const Form& oddForm(Reply::Operation operation, int variant)
{
    switch (operation) {
    case Reply::login:
        return choose(odd_logins, variant);
    case Reply::groups:
        return choose(odd_groups, variant);
    case Reply::items:
        return choose(odd_items, variant);
    case Reply::read:
        return choose(odd_reads, variant);
    case Reply::write:
        break;
    }
    return choose(odd_writes, variant);
}

Reply withRest(const QByteArray& rest)
{
    Reply reply;
    reply.body = QByteArray(R"({"errorcode":0)") + rest + '}';
    return reply;
}

/// A list with one or two groups, an empty one, or with a group that has no name.
Reply goodGroups(int variant)
{
    if (variant % 4 == 2) {
        Reply reply = withRest(R"(,"Number":0,"groups":[])");
        reply.own = Reply::nothing;
        return reply;
    }
    QByteArray list(R"({"group_id":"g0","name":"Hall"})");
    if (variant % 4 == 1)
        list += R"(,{"group_id":"g1","name":"Roof","alert":true})";
    if (variant % 4 == 3)
        list += R"(,{"group_id":"g2"})";
    Reply reply = withRest(R"(,"Number":1,"groups":[)" + list + ']');
    reply.names = QStringList{QStringLiteral("g0 Hall")};
    if (variant % 4 == 1)
        reply.names.append(QStringLiteral("g1 Roof"));
    return reply;
}

Reply goodReply(Reply::Operation operation, int variant, int serial)
{
    Reply reply;
    switch (operation) {
    case Reply::login:
        reply.token = QStringLiteral("T%1").arg(serial);
        reply.body = R"({"errorcode":0.9,"token":")" + reply.token.toLatin1() + "\"}";
        return reply;
    case Reply::groups:
        return goodGroups(variant);
    case Reply::items:
        if (variant % 3 == 1) {
            reply = withRest(R"(,"Number":0,"dataitems":[])");
            reply.own = Reply::nothing;
            return reply;
        }
        return withRest(R"(,"Number":5,"dataitems":[{"name":"a","dataitem_id":"b","type":"Bit"}])");
    case Reply::read:
        reply = withRest("");
        reply.value = choose(values, variant);
        reply.body.insert(reply.body.size() - 1, QByteArray(",\"value\":") + reply.value.wire);
        return reply;
    case Reply::write:
        break;
    }
    return withRest("");
}

Reply commonFailure(Reply::Common common, const char* body)
{
    Reply reply;
    reply.common = common;
    reply.body = body;
    return reply;
}

Reply notJson(int variant)
{
    static const char* const bodies[] = {"", R"({"errorcode":0)", "<html>", "{errorcode:0}", "nul"};
    return commonFailure(Reply::not_json, choose(bodies, variant));
}

Reply codeReply(int code)
{
    Reply reply = commonFailure(Reply::code_of_service, "");
    reply.body = R"({"errorcode":)" + QByteArray::number(code) + '}';
    reply.code = code;
    return reply;
}

/// The transport has failed with nothing, with a code or with a whole answer.
Reply brokenReply(Reply::Operation operation, int variant, int serial)
{
    Reply reply = notJson(0);
    if (variant % 4 == 1)
        reply = codeReply(choose(codes, variant / 4));
    if (variant % 4 == 2)
        reply = goodReply(operation, 0, serial);
    reply.is_broken = true;
    return reply;
}

} // namespace

Reply::Operation operationAt(const QString& url)
{
    int operation = Reply::login;
    while (operation < Reply::write && !url.endsWith(QLatin1String(paths[operation])))
        ++operation;
    return Reply::Operation(operation);
}

const QStringList& kinds()
{
    static const QStringList names = {
        QStringLiteral("good"),     QStringLiteral("odd"),     QStringLiteral("code"),
        QStringLiteral("not-json"), QStringLiteral("no-code"), QStringLiteral("bad-code"),
        QStringLiteral("broken"),
    };
    return names;
}

Reply make(Reply::Operation operation, int kind, int variant, int serial)
{
    static const char* const without[] = {"{}", R"({"errorcode":null})"};
    static const char* const invalid[] = {R"({"errorcode":"0"})", R"({"errorcode":true})",
                                          R"({"errorcode":[]})"};
    switch (kind) {
    case 0:
        return goodReply(operation, variant, serial);
    case 1: {
        const Form& form = oddForm(operation, variant);
        Reply reply = withRest(form.rest);
        reply.own = form.own;
        return reply;
    }
    case 2:
        return codeReply(choose(codes, variant));
    case 3:
        return notJson(variant);
    case 4:
        return commonFailure(Reply::no_code, choose(without, variant));
    case 5:
        return commonFailure(Reply::invalid_code, choose(invalid, variant));
    default:
        return brokenReply(operation, variant, serial);
    }
}

} // namespace replies
