#include "tools/host/driver/answer_json.h"

#include "tools/host/value/status_text.h"

namespace tovik_host::driver {

void addAnswer(value::OrderedJson& line, const config::ItemConfig& item, const Answer& answer,
               const std::optional<QString>& value)
{
    line["item"] = item.name.toStdString();
    line["type"] = item.type->name;
    line["value"] = value::jsonValue(*item.type, value);
    line["bytes"] = answer.bytes.toHex().toStdString();
    line["status"] = answer.arrived
                         ? value::OrderedJson(value::statusCode(answer.status).toStdString())
                         : value::OrderedJson(nullptr);
    line["status_text"] = answer.arrived
                              ? value::statusText(answer.status, answer.status_of).toStdString()
                              : std::string("no answer");
}

} // namespace tovik_host::driver
