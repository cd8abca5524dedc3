#include "cloud/catalogue.h"

#include "cloud/data_item_type.h"
#include "cloud/json_number.h"
#include "cloud/service_message.h"
#include "compat/text.h"

#include <QDebug>

namespace catalogue {

namespace {

/// What a list is called in the reply and in the log.
struct ListNames
{
    const char* member;
    const char* absent;
    const char* number_invalid;
    const char* not_array;
};

const ListNames group_list = {
    "groups",
    "[TOVIK IoT] GetGroupList Error: no Number/groups!",
    "[TOVIK IoT] GetGroupList Error: group number invalid!",
    "[TOVIK IoT] GetGroupList Error: groups is not array!",
};
const ListNames dataitem_list = {
    "dataitems",
    "[TOVIK IoT] GetDataitemList Error: no Number/dataitems!",
    "[TOVIK IoT] GetDataitemList Error: dataitem number invalid!",
    "[TOVIK IoT] GetDataitemList Respond Error: dataitems is not array!",
};

int fail(const char* message)
{
    qDebug() << message;
    return service::client_failure;
}

/// "Number" only says whether there is anything at all; the array's own length decides how much.
int findList(const picojson::object& reply, const ListNames& names, const picojson::array** list)
{
    *list = 0;
    const picojson::value& number = service::find(reply, "Number");
    const picojson::value& elements = service::find(reply, names.member);
    if (number.is<picojson::null>() || elements.is<picojson::null>())
        return fail(names.absent);
    if (!number.is<double>())
        return fail(names.number_invalid);
    if (json_number::toInt32(number.get<double>()) < 1)
        return service::success;
    if (!elements.is<picojson::array>())
        return fail(names.not_array);
    *list = &elements.get<picojson::array>();
    return service::success;
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

/// Sets type name and a value of 0 from the service's "type"; false when it is an unknown one.
bool copyType(const picojson::value& json, PropertyTovikIotDataItem* item)
{
    if (!json.is<std::string>())
        return true;
    item->type = QLatin1String("16Bit-INT");
    item->value = QVariant(0);
    const DataItemType* type = findServiceType(text::fromLatin1(json.get<std::string>()));
    if (!type)
        return false;
    item->type = QLatin1String(type->name);
    return true;
}

void copyValue(const picojson::value& json, PropertyTovikIotDataItem* item)
{
    const DataItemType* type = findDataItemType(item->type);
    if (type && (json.*type->is_expected)())
        item->value = type->from_json(json);
}

} // namespace

int findGroups(const picojson::object& reply, const picojson::array** groups)
{
    const int result = findList(reply, group_list, groups);
    if (result == service::success && !*groups)
        qDebug() << "[TOVIK IoT] Warning: no group!";
    return result;
}

int findDataitems(const picojson::object& reply, const QString& group_name,
                  const picojson::array** dataitems)
{
    const int result = findList(reply, dataitem_list, dataitems);
    if (result == service::success && !*dataitems)
        qDebug() << "[TOVIK IoT] Warning: Group " << group_name << ": no dataitem!";
    return result;
}

bool readGroup(const picojson::value& element, PropertyTovikIotGroup* group)
{
    *group = PropertyTovikIotGroup();
    copyLatin1(element.get("group_id"), &group->group_id);
    copyUtf8(element.get("name"), &group->name);
    copyLatin1(element.get("location"), &group->location);
    copyLatin1(element.get("ddLocation"), &group->ddLocation);
    copyBool(element.get("alert"), &group->alert);
    copyLatin1(element.get("permission"), &group->permission);
    return !group->group_id.isEmpty() && !group->name.isEmpty();
}

bool readDataitem(const picojson::value& element, PropertyTovikIotDataItem* item)
{
    item->Initial();
    copyUtf8(element.get("name"), &item->name);
    copyLatin1(element.get("dataitem_id"), &item->dataitem_id);
    const bool known_type = copyType(element.get("type"), item);
    copyInt(element.get("length"), &item->length);
    if (known_type)
        copyValue(element.get("value"), item);
    copyInt(element.get("cloud_status"), &item->cloud_status);
    copyBool(element.get("alert"), &item->alert);
    copyInt(element.get("update_time"), &item->update_time);
    return known_type && !item->name.isEmpty() && !item->dataitem_id.isEmpty();
}

} // namespace catalogue
