#include "tools/host/cloud_steps.h"

#include "cloud/catalogue.h"
#include "cloud/data_item_type.h"
#include "cloud/service_message.h"
#include "cloud/tovik_iot.h"

#include <QDebug>

namespace tovik_host {

namespace {

int post(TovikIot& client, const QString& url, const picojson::object& members,
         const service::ReplyMessages& messages, picojson::object* reply)
{
    return service::checkReply(client.PostRequest(service::requestBody(members), url), messages,
                               reply);
}

QString kindOf(const picojson::value& json)
{
    if (json.is<bool>())
        return QStringLiteral("true or false");
    if (json.is<double>())
        return QStringLiteral("a number");
    if (json.is<std::string>())
        return QStringLiteral("a text");
    return json.is<picojson::array>() ? QStringLiteral("a list") : QStringLiteral("an object");
}

/// The groups that are to be asked for their items.
int listGroups(TovikIot& client, const QString& url, QList<PropertyTovikIotGroup>* groups)
{
    picojson::object members;
    members["token"] = service::member(client.Token());
    picojson::object reply;
    int result = post(client, url + QLatin1String("/qlix_api/imonitor/group/list"), members,
                      service::group_list_messages, &reply);
    const picojson::array* elements = nullptr;
    if (result == service::success)
        result = catalogue::findGroups(reply, &elements);
    if (result != service::success || !elements)
        return result;
    for (const picojson::value& element : *elements) {
        PropertyTovikIotGroup group;
        if (catalogue::readGroup(element, &group))
            groups->append(group);
    }
    return service::success;
}

} // namespace

namespace cloud_steps {

int loadGroups(TovikIot& client, const QString& url,
               const std::function<void(const CatalogueProgress&)>& progress,
               QList<PropertyTovikIotGroup>* groups)
{
    QList<PropertyTovikIotGroup> listed;
    const int result = listGroups(client, url, &listed);
    if (result != service::success)
        return result;
    CatalogueProgress done;
    done.groups_known = listed.size();
    progress(done);
    for (PropertyTovikIotGroup& group : listed) {
        const int items_result = client.GetDataitemList(client.Token(), &group);
        if (items_result != service::success)
            return items_result;
        groups->append(group);
        ++done.groups_loaded;
        done.items += group.dataitems.size();
        progress(done);
    }
    return service::success;
}

int readValue(TovikIot& client, const QString& url, const QString& id, const QString& type_name,
              QVariant* value, QString* problem)
{
    picojson::object members;
    members["token"] = service::member(client.Token());
    members["dataitem_id"] = service::member(id);
    picojson::object reply;
    const int result = post(client, url + QLatin1String("/qlix_api/imonitor/dataitem/value"),
                            members, service::read_messages, &reply);
    if (result != service::success)
        return result;
    const picojson::value& json = service::find(reply, "value");
    if (json.is<picojson::null>()) {
        qDebug() << "[TOVIK IoT] ReadDataitemValue Error: no value!";
        return service::client_failure;
    }
    const DataItemType* type = findDataItemType(type_name);
    if (!type)
        *problem = QStringLiteral("\"%1\" is no type").arg(type_name);
    else if (!(json.*type->is_expected)())
        *problem = QStringLiteral("the value is %1, which is no %2").arg(kindOf(json), type_name);
    else
        *value = type->from_json(json);
    return service::success;
}

} // namespace cloud_steps

} // namespace tovik_host
