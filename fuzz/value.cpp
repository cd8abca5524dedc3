#include "fuzz/input.h"
#include "fuzz/item_values.h"
#include "fuzz/json_reply.h"
#include "fuzz/target.h"

namespace fuzz {

// A byte for the type, one for the length that the host wishes, then the reply.
void runValue(const QByteArray& input)
{
    Input next(input);
    const DataItemType& type = typeAt(next.choice(type_count));
    const int data_length = next.byte() - 64;
    picojson::object members;
    if (!takeReply(next.rest(), service::read, &members))
        return;
    const picojson::value& value = service::find(members, "value");
    if (!(value.*type.is_expected)())
        return;
    const QVariant cached = type.from_json(value);
    require(isCachedValue(type, cached), "a value becomes the variant of its type");
    checkValue(type, cached, data_length);
}

} // namespace fuzz
