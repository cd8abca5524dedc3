#include "cloud/conversation.h"

#include "cloud/catalogue.h"
#include "cloud/data_item_type.h"
#include "cloud/post.h"
#include "compat/text.h"

#include <QScopedPointer>

using service::Outcome;

namespace {

/// Takes the reply of a post that has ended.
Outcome takeReply(Post* post, const service::Operation& operation, picojson::object* reply)
{
    const Outcome outcome = service::checkReply(post->takeBytes(), operation, reply);
    // What stands in the reply of a failed transport, if anything, is not the cause.
    if (outcome.result == service::client_failure && post->hasFailed())
        return Outcome(outcome.result, Outcome::no_answer, post->problem());
    return outcome;
}

const char* kindOf(const picojson::value& json)
{
    if (json.is<bool>())
        return "true or false";
    if (json.is<double>())
        return "a number";
    if (json.is<std::string>())
        return "a text";
    return json.is<picojson::array>() ? "a list" : "an object";
}

int countOfGroups(const picojson::array& elements)
{
    int count = 0;
    PropertyTovikIotGroup group;
    for (picojson::array::const_iterator it = elements.begin(); it != elements.end(); ++it) {
        if (it->is<picojson::object>() && catalogue::readGroup(*it, &group))
            ++count;
    }
    return count;
}

} // namespace

Conversation::Conversation(const PropertyTovikIot* property)
    : property_(property),
      memory_(new PostMemory)
{}

Conversation::~Conversation() {}

QString Conversation::urlOf(const service::Operation& operation) const
{
    return property_->host + QLatin1String(operation.path);
}

Outcome Conversation::call(const service::Operation& operation, const picojson::object& members,
                           picojson::object* reply) const
{
    Post post(service::requestBody(members), urlOf(operation), memory_.data());
    post.wait();
    return takeReply(&post, operation, reply);
}

Outcome Conversation::login(const QString& project, const QString& email, const QString& password,
                            QString* token) const
{
    picojson::object members;
    members["project"] = service::member(project);
    members["email"] = service::member(email);
    members["password"] = service::member(password);
    picojson::object reply;
    const Outcome outcome = call(service::login, members, &reply);
    if (outcome.result != service::success)
        return outcome;
    const picojson::value& sent = service::find(reply, "token");
    if (sent.is<picojson::null>())
        return service::fail(service::login.word, Outcome::member_missing, "no token");
    if (!sent.is<std::string>())
        return service::fail(service::login.word, Outcome::member_invalid, "token invalid");
    *token = text::fromLatin1(sent.get<std::string>());
    if (token->isEmpty()) {
        return Outcome(service::client_failure, Outcome::token_empty,
                       QLatin1String("the token is empty"));
    }
    return outcome;
}

Outcome Conversation::groupList(const QString& token, QList<PropertyTovikIotGroup>* groups,
                                const Listener& listener) const
{
    groups->clear();
    picojson::object members;
    members["token"] = service::member(token);
    picojson::object reply;
    Outcome outcome = call(service::group_list, members, &reply);
    const picojson::array* elements = 0;
    if (outcome.result == service::success)
        outcome = catalogue::findGroups(reply, &elements);
    Progress progress = {elements && listener ? countOfGroups(*elements) : 0, 0, 0};
    if (outcome.result == service::success && listener)
        listener(progress);
    if (!elements)
        return outcome;
    for (picojson::array::const_iterator it = elements->begin(); it != elements->end(); ++it) {
        PropertyTovikIotGroup group;
        if (!catalogue::readGroup(*it, &group))
            continue;
        outcome = dataitemList(token, &group);
        if (outcome.result != service::success)
            return outcome;
        groups->append(group);
        ++progress.groups_loaded;
        progress.items += group.dataitems.size();
        if (listener)
            listener(progress);
    }
    return outcome;
}

Outcome Conversation::dataitemList(const QString& token, PropertyTovikIotGroup* group) const
{
    picojson::object members;
    members["token"] = service::member(token);
    members["group_id"] = service::member(group->group_id);
    picojson::object reply;
    Outcome outcome = call(service::dataitem_list, members, &reply);
    const picojson::array* elements = 0;
    if (outcome.result == service::success)
        outcome = catalogue::findDataitems(reply, group->name, &elements);
    if (!elements)
        return outcome;
    for (picojson::array::const_iterator it = elements->begin(); it != elements->end(); ++it) {
        PropertyTovikIotDataItem item;
        if (catalogue::readDataitem(*it, &item))
            group->dataitems.append(item);
    }
    return outcome;
}

Outcome Conversation::readValue(const QString& token, PropertyTovikIotDataItem* item) const
{
    picojson::object members;
    members["token"] = service::member(token);
    members["dataitem_id"] = service::member(item->dataitem_id);
    picojson::object reply;
    const Outcome outcome = call(service::read, members, &reply);
    if (outcome.result != service::success)
        return outcome;
    const picojson::value& value = service::find(reply, "value");
    if (value.is<picojson::null>())
        return service::fail(service::read.word, Outcome::member_missing, "no value");
    const DataItemType* type = findDataItemType(item->type);
    if (!type)
        return Outcome(service::success, Outcome::unknown_type, QString());
    if (!(value.*type->is_expected)())
        return Outcome(service::success, Outcome::other_kind, QLatin1String(kindOf(value)));
    item->value = type->from_json(value);
    return outcome;
}

Outcome Conversation::writeValue(const QString& token, const PropertyTovikIotDataItem& item,
                                 const QVariant& value) const
{
    const QScopedPointer<Post> post(postWrite(token, item, value));
    post->wait();
    return takeWrite(post.data());
}

Post* Conversation::postWrite(const QString& token, const PropertyTovikIotDataItem& item,
                              const QVariant& value) const
{
    picojson::object members;
    members["token"] = service::member(token);
    members["dataitem_id"] = service::member(item.dataitem_id);
    if (const DataItemType* type = findDataItemType(item.type))
        members["value"] = type->to_json(value);
    return new Post(service::requestBody(members), urlOf(service::write), memory_.data());
}

Outcome Conversation::takeWrite(Post* post) const
{
    picojson::object reply;
    return takeReply(post, service::write, &reply);
}
