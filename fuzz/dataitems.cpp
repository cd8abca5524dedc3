#include "fuzz/item_values.h"
#include "fuzz/json_reply.h"
#include "fuzz/target.h"

#include "cloud/catalogue.h"

namespace fuzz {

namespace {

bool isDefaultValue(const QVariant& value)
{
    return value == QVariant(0) || value == QVariant(QString::fromLatin1(""));
}

void checkItem(const PropertyTovikIotDataItem& item)
{
    require(!item.name.isEmpty() && !item.dataitem_id.isEmpty() && !item.marked,
            "a kept item has a name and an id, and no mark");
    const DataItemType* type = findDataItemType(item.type);
    require(type != nullptr, "a kept item has a known type");
    require(isCachedValue(*type, item.value) || isDefaultValue(item.value),
            "a kept item has a value of its type, or the default one");
    checkValue(*type, item.value, item.length % 64);
}

} // namespace

void runDataitems(const QByteArray& input)
{
    picojson::object members;
    if (!takeReply(input, service::dataitem_list, &members))
        return;
    const picojson::array* items = nullptr;
    const int result = catalogue::findDataitems(members, QString(), &items).result;
    require(result == service::success || (result == service::client_failure && !items),
            "a list of items is found, or it is the client's failure");
    if (!items)
        return;
    for (const picojson::value& element : *items) {
        PropertyTovikIotDataItem item;
        bool kept = false;
        const bool mismatch =
            raisesTypeMismatch([&] { kept = catalogue::readDataitem(element, &item); });
        require(mismatch != element.is<picojson::object>(),
                "an element raises exactly if it is no object");
        if (kept)
            checkItem(item);
    }
}

} // namespace fuzz
