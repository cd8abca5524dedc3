#include "tools/host/value/json_text.h"

#include <cmath>

namespace tovik_host::value {

OrderedJson jsonReport(const char* event, const QDateTime& time)
{
    OrderedJson line = {{"version", json_version}};
    if (event)
        line["event"] = event;
    if (time.isValid())
        line["time"] = jsonTime(time);
    return line;
}

OrderedJson jsonValue(const ItemType& type, const std::optional<QString>& value)
{
    if (!value)
        return nullptr;
    if (!type.is_number)
        return *value;
    bool is_whole = false;
    const qint64 whole = value->toLongLong(&is_whole);
    if (is_whole)
        return whole;
    const double number = value->toDouble();
    return std::isfinite(number) ? OrderedJson(number) : OrderedJson(nullptr);
}

QString jsonTime(const QDateTime& time)
{
    return time.toUTC().toString(Qt::ISODateWithMs);
}

QString jsonLine(const OrderedJson& line)
{
    return QString::fromStdString(line.dump(-1, ' ', false, OrderedJson::error_handler_t::replace));
}

QString jsonText(const OrderedJson& json)
{
    return QString::fromStdString(json.dump(2)) + u'\n';
}

} // namespace tovik_host::value
