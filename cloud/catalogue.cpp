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

/// Finds the members of an element in one pass. They must be asked for in ascending order of their
/// names, which is how an object keeps them; looked up one by one they took as long as the rest of
/// reading an item.
class Members
{
public:
    explicit Members(const picojson::value& element)
        : next_(objectOf(element).begin()),
          end_(objectOf(element).end())
    {}

    /// The member \a name, or null when it is missing.
    const picojson::value& find(const char* name)
    {
        static const picojson::value missing;
        while (next_ != end_) {
            const int order = next_->first.compare(name);
            if (order >= 0)
                return order == 0 ? next_->second : missing;
            ++next_;
        }
        return missing;
    }

private:
    static const picojson::object& objectOf(const picojson::value& element)
    {
        if (!element.is<picojson::object>())
            element.contains(std::string()); // raises what asking for a member raises
        return element.get<picojson::object>();
    }

    picojson::object::const_iterator next_;
    picojson::object::const_iterator end_;
};

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
    Members members(element);
    *group = PropertyTovikIotGroup();
    copyBool(members.find("alert"), &group->alert);
    copyLatin1(members.find("ddLocation"), &group->ddLocation);
    copyLatin1(members.find("group_id"), &group->group_id);
    copyLatin1(members.find("location"), &group->location);
    copyUtf8(members.find("name"), &group->name);
    copyLatin1(members.find("permission"), &group->permission);
    return !group->group_id.isEmpty() && !group->name.isEmpty();
}

bool readDataitem(const picojson::value& element, PropertyTovikIotDataItem* item)
{
    Members members(element);
    item->Initial();
    copyBool(members.find("alert"), &item->alert);
    copyInt(members.find("cloud_status"), &item->cloud_status);
    copyLatin1(members.find("dataitem_id"), &item->dataitem_id);
    copyInt(members.find("length"), &item->length);
    copyUtf8(members.find("name"), &item->name);
    const DataItemType* type = copyType(members.find("type"), item);
    copyInt(members.find("update_time"), &item->update_time);
    if (!type)
        return false;
    copyValue(members.find("value"), *type, item);
    return !item->name.isEmpty() && !item->dataitem_id.isEmpty();
}

} // namespace catalogue
