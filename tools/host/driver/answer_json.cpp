#include "tools/host/driver/answer_json.h"

#include "tools/host/value/status_text.h"

namespace tovik_host {

void addAnswer(OrderedJson& line, const ItemConfig& item, const Answer& answer,
               const std::optional<QString>& value)
{
    line["item"] = item.name.toStdString();
    line["type"] = item.type->name;
    line["value"] = jsonValue(*item.type, value);
    line["bytes"] = answer.bytes.toHex().toStdString();
    line["status"] = answer.arrived ? OrderedJson(statusCode(answer.status).toStdString())
                                    : OrderedJson(nullptr);
    line["status_text"] = answer.arrived ? statusText(answer.status, answer.status_of).toStdString()
                                         : std::string("no answer");
}

} // namespace tovik_host
