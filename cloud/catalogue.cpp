#include "cloud/catalogue.h"

#include "cloud/data_item_type.h"
#include "cloud/json_number.h"
#include "compat/text.h"

#include <QDebug>

using service::find;
using service::Outcome;

namespace catalogue {

namespace {

/// What a list is called in the reply and in the log.
struct ListNames
{
    const char* member;
    const char* word;
    const char* absent;
    const char* number_invalid;
    const char* array_word;
    const char* not_array;
};

const ListNames group_list = {
    "groups",       "GetGroupList",        "no Number/groups", "group number invalid",
    "GetGroupList", "groups is not array",
};
// The word of the last message is another one; people search their logs for it.
const ListNames dataitem_list = {
    "dataitems",
    "GetDataitemList",
    "no Number/dataitems",
    "dataitem number invalid",
    "GetDataitemList Respond",
    "dataitems is not array",
};

/// "Number" only says whether there is anything at all; the array's own length decides how much.
Outcome findList(const picojson::object& reply, const ListNames& names,
                 const picojson::array** list)
{
    *list = 0;
    const picojson::value& number = find(reply, "Number");
    const picojson::value& elements = find(reply, names.member);
    if (number.is<picojson::null>() || elements.is<picojson::null>())
        return service::fail(names.word, Outcome::member_missing, names.absent);
    if (!number.is<double>())
        return service::fail(names.word, Outcome::member_invalid, names.number_invalid);
    if (json_number::toInt32(number.get<double>()) < 1)
        return Outcome();
    if (!elements.is<picojson::array>())
        return service::fail(names.array_word, Outcome::member_invalid, names.not_array);
    *list = &elements.get<picojson::array>();
    return Outcome();
}

// A member that is missing or of another kind leaves the target as it is.

void copyLatin1(const picojson::value& json, QString* target)
{
    if (json.is<std::string>())
        *target = text::fromLatin1(json.get<std::string>());
}

void copyUtf8(const picojson::value& json, QString* target)
{
    if (json.is<std::string>())
        *target = text::fromUtf8(json.get<std::string>());
}

void copyBool(const picojson::value& json, bool* target)
{
    if (json.is<bool>())
        *target = json.get<bool>();
}

void copyInt(const picojson::value& json, int* target)
{
    if (json.is<double>())
        *target = json_number::toInt32(json.get<double>());
}

/// The members of an element; one that is no object raises what asking it for a member raises.
const picojson::object& membersOf(const picojson::value& element)
{
    if (!element.is<picojson::object>())
        element.contains(std::string());
    return element.get<picojson::object>();
}

/// Sets type name and a value of 0 from the service's "type", and returns the type; null when it is
/// an unknown one. A missing type leaves both as they are.
const DataItemType* copyType(const picojson::value& json, PropertyTovikIotDataItem* item)
{
    if (!json.is<std::string>())
        return findDataItemType(item->type);
    item->value = QVariant(0);
    const DataItemType* type = findServiceType(text::fromLatin1(json.get<std::string>()));
    if (type)
        item->type = sharedName(*type);
    return type;
}

void copyValue(const picojson::value& json, const DataItemType& type,
               PropertyTovikIotDataItem* item)
{
    if ((json.*type.is_expected)())
        item->value = type.from_json(json);
}

} // namespace

Outcome findGroups(const picojson::object& reply, const picojson::array** groups)
{
    const Outcome outcome = findList(reply, group_list, groups);
    if (outcome.result == service::success && !*groups)
        qDebug() << "[TOVIK IoT] Warning: no group!";
    return outcome;
}

Outcome findDataitems(const picojson::object& reply, const QString& group_name,
                      const picojson::array** dataitems)
{
    const Outcome outcome = findList(reply, dataitem_list, dataitems);
    if (outcome.result == service::success && !*dataitems)
        qDebug() << "[TOVIK IoT] Warning: Group " << group_name << ": no dataitem!";
    return outcome;
}

bool readGroup(const picojson::value& element, PropertyTovikIotGroup* group)
{
    const picojson::object& members = membersOf(element);
    *group = PropertyTovikIotGroup();
    copyLatin1(find(members, "group_id"), &group->group_id);
    copyUtf8(find(members, "name"), &group->name);
    copyLatin1(find(members, "location"), &group->location);
    copyLatin1(find(members, "ddLocation"), &group->ddLocation);
    copyBool(find(members, "alert"), &group->alert);
    copyLatin1(find(members, "permission"), &group->permission);
    return !group->group_id.isEmpty() && !group->name.isEmpty();
}

bool readDataitem(const picojson::value& element, PropertyTovikIotDataItem* item)
{
    const picojson::object& members = membersOf(element);
    item->Initial();
    copyUtf8(find(members, "name"), &item->name);
    copyLatin1(find(members, "dataitem_id"), &item->dataitem_id);
    const DataItemType* type = copyType(find(members, "type"), item);
    copyInt(find(members, "length"), &item->length);
    if (type)
        copyValue(find(members, "value"), *type, item);
    copyInt(find(members, "cloud_status"), &item->cloud_status);
    copyBool(find(members, "alert"), &item->alert);
    copyInt(find(members, "update_time"), &item->update_time);
    return type && !item->name.isEmpty() && !item->dataitem_id.isEmpty();
}

} // namespace catalogue
