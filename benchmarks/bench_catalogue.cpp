// The catalogue of a project, from the replies' bytes to records, parsing included.

#include "benchmarks/comparison.h"
#include "benchmarks/sample_values.h"
#include "cloud/catalogue.h"
#include "cloud/service_message.h"

#include <memory>

namespace {

const double target = 1.7;
const int items_in_group = 500;

/// The service's replies: one list of groups, and a list of items for each.
struct Replies
{
    QByteArray groups;
    std::vector<QByteArray> dataitems;
};

std::string quoted(const std::string& text)
{
    return '"' + text + '"';
}

std::string groupJson(int group)
{
    return "{\"alert\":false,\"ddLocation\":\"48.1372,11.5756\",\"group_id\":\"5f1a7c2e" +
           std::to_string(group) + "\",\"location\":\"Building 2\",\"name\":\"Line " +
           std::to_string(group) + "\",\"permission\":\"RW\"}";
}

std::string itemJson(int group, int item)
{
    const std::vector<bench::SampleValue>& values = bench::sampleValues();
    const bench::SampleValue& value = values[std::size_t(item) % values.size()];
    const std::string number = std::to_string(group * items_in_group + item);
    return "{\"alert\":false,\"cloud_status\":0,\"dataitem_id\":\"5f1a7c2e9b" + number +
           "\",\"length\":" + std::to_string(value.data_length) + ",\"name\":\"Line3.Tank.Value" +
           number + "\",\"type\":" + quoted(value.type) +
           ",\"update_time\":1700000000,\"value\":" + value.json + '}';
}

std::string reply(int count, const char* member, const std::string& elements)
{
    return "{\"Number\":" + std::to_string(count) + ",\"" + member + "\":[" + elements +
           "],\"errorcode\":0}";
}

Replies repliesOf(int groups)
{
    Replies replies;
    std::string group_list;
    for (int group = 0; group < groups; ++group) {
        group_list += (group > 0 ? "," : "") + groupJson(group);
        std::string item_list;
        for (int item = 0; item < items_in_group; ++item)
            item_list += (item > 0 ? "," : "") + itemJson(group, item);
        replies.dataitems.push_back(
            QByteArray::fromStdString(reply(items_in_group, "dataitems", item_list)));
    }
    replies.groups = QByteArray::fromStdString(reply(groups, "groups", group_list));
    return replies;
}

/// As the client does with a reply's bytes.
picojson::object checked(const QByteArray& bytes, const service::Operation& operation)
{
    picojson::object members;
    if (service::checkReply(bytes.toStdString(), operation, &members).result != service::success)
        qFatal("a reply was refused");
    return members;
}

void readItems(const QByteArray& bytes, PropertyTovikIotGroup* group)
{
    const picojson::object reply = checked(bytes, service::dataitem_list);
    const picojson::array* dataitems = nullptr;
    catalogue::findDataitems(reply, group->name, &dataitems);
    for (const picojson::value& element : *dataitems) {
        PropertyTovikIotDataItem item;
        if (catalogue::readDataitem(element, &item))
            group->dataitems.append(item);
    }
}

int itemsOfCatalogue(const Replies& replies)
{
    QList<PropertyTovikIotGroup> catalogue;
    const picojson::object reply = checked(replies.groups, service::group_list);
    const picojson::array* groups = nullptr;
    catalogue::findGroups(reply, &groups);
    int items = 0;
    for (const picojson::value& element : *groups) {
        PropertyTovikIotGroup group;
        if (!catalogue::readGroup(element, &group))
            continue;
        readItems(replies.dataitems.at(std::size_t(catalogue.size())), &group);
        items += group.dataitems.size();
        catalogue.append(group);
    }
    return items;
}

int parsedItems(const Replies& replies)
{
    picojson::value groups;
    picojson::parse(groups, replies.groups.constData(), replies.groups.constEnd(), nullptr);
    int items = 0;
    for (const QByteArray& bytes : replies.dataitems) {
        picojson::value value;
        picojson::parse(value, bytes.constData(), bytes.constEnd(), nullptr);
        items += int(value.get("dataitems").get<picojson::array>().size());
    }
    return items;
}

} // namespace

int main(int argc, char** argv)
{
    for (int groups : {1, 10, 100}) {
        const auto replies = std::make_shared<Replies>(repliesOf(groups));
        bench::compare(
            {std::to_string(groups) + " groups of " + std::to_string(items_in_group),
             groups == 100 ? target : 0, double(groups * items_in_group)},
            [replies] { return itemsOfCatalogue(*replies); },
            [replies] { return parsedItems(*replies); });
    }
    return bench::run(argc, argv);
}
