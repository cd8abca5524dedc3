#include "tools/host/json_text.h"

#include "tools/host/status_text.h"

#include <cmath>

namespace tovik_host {

OrderedJson jsonValue(const ItemType& type, const std::optional<QString>& value)
{
    if (!value)
        return nullptr;
    if (!type.is_number)
        return value->toStdString();
    bool is_whole = false;
    const qint64 whole = value->toLongLong(&is_whole);
    if (is_whole)
        return whole;
    const double number = value->toDouble();
    return std::isfinite(number) ? OrderedJson(number) : OrderedJson(nullptr);
}

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

std::string jsonTime(const QDateTime& time)
{
    return time.toUTC().toString(Qt::ISODateWithMs).toStdString();
}

QString jsonLine(const OrderedJson& line)
{
    return QString::fromStdString(line.dump(-1, ' ', false, OrderedJson::error_handler_t::replace));
}

} // namespace tovik_host
