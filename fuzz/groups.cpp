#include "fuzz/json_reply.h"
#include "fuzz/target.h"

#include "cloud/catalogue.h"

namespace fuzz {

void runGroups(const QByteArray& input)
{
    picojson::object members;
    if (!takeReply(input, service::group_list, &members))
        return;
    const picojson::array* groups = nullptr;
    const int result = catalogue::findGroups(members, &groups).result;
    require(result == service::success || (result == service::client_failure && !groups),
            "a list of groups is found, or it is the client's failure");
    if (!groups)
        return;
    for (const picojson::value& element : *groups) {
        PropertyTovikIotGroup group;
        bool kept = false;
        const bool mismatch =
            raisesTypeMismatch([&] { kept = catalogue::readGroup(element, &group); });
        require(mismatch != element.is<picojson::object>(),
                "an element raises exactly if it is no object");
        if (kept)
            require(!group.group_id.isEmpty() && !group.name.isEmpty() && !group.marked &&
                        group.dataitems.isEmpty(),
                    "a kept group has an id and a name, no mark and no items");
    }
}

} // namespace fuzz
