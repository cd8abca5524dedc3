#include "tests/reliability/histories/history.h"

#include "tests/reliability/histories/reply.h"

#include <QStringList>

#include <iterator>

namespace {

const char* const event_names[] = {"read", "write", "host",  "client", "timer",
                                   "wait", "reply", "close", "open"};
const char* const type_names[item_types] = {
    "16Bit-INT", "Bit",        "16Bit-BCD", "16Bit-UINT",  "16Bit-HEX", "32Bit-BCD",
    "32Bit-INT", "32Bit-UINT", "32Bit-HEX", "32Bit-FLOAT", "String",    "Ascii String"};

int argumentsOf(Event::Kind kind)
{
    switch (kind) {
    case Event::read:
        return 2;
    case Event::write:
    case Event::reply:
        return 3;
    case Event::wait:
        return 1;
    default:
        return 0;
    }
}

QString eventText(const Event& event)
{
    QString text = QLatin1String(event_names[event.kind]);
    const int arguments = argumentsOf(event.kind);
    if (arguments > 0)
        text += QLatin1Char(':') + QString::number(event.a);
    if (event.kind == Event::reply)
        text += QLatin1Char(':') + replies::kinds().at(event.b);
    else if (arguments > 1)
        text += QLatin1Char(':') + QString::number(event.b);
    if (arguments > 2)
        text += QLatin1Char(':') + QString::number(event.c);
    return text;
}

bool readEvent(const QString& text, Event* event)
{
    const QStringList parts = text.split(QLatin1Char(':'));
    int kind = 0;
    while (kind <= Event::open && parts.first() != QLatin1String(event_names[kind]))
        ++kind;
    if (kind > Event::open || parts.size() != argumentsOf(Event::Kind(kind)) + 1)
        return false;
    event->kind = Event::Kind(kind);
    int* const places[] = {&event->a, &event->b, &event->c};
    for (int i = 1; i < parts.size(); ++i) {
        bool is_number = false;
        int number = parts.at(i).toInt(&is_number);
        if (event->kind == Event::reply && i == 2) {
            number = replies::kinds().indexOf(parts.at(i));
            is_number = number >= 0;
        }
        if (!is_number || number < 0)
            return false;
        *places[i - 1] = number;
    }
    return true;
}

bool readItems(const QString& text, std::vector<int>* items)
{
    for (const QString& part : text.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        bool is_number = false;
        items->push_back(part.toInt(&is_number));
        if (!is_number || items->back() < 0 || items->back() >= item_choices)
            return false;
    }
    return true;
}

bool readSetting(const QString& name, const QString& value, History* history)
{
    bool is_number = false;
    const int number = value.toInt(&is_number);
    if (name == QLatin1String("items"))
        return readItems(value, &history->items);
    if (name == QLatin1String("type"))
        history->type = number;
    else if (name == QLatin1String("time"))
        history->return_time = number;
    else if (name == QLatin1String("by-time"))
        history->return_time_en = number != 0;
    else if (name == QLatin1String("restore"))
        history->restore_switch = number != 0;
    else
        return false;
    return is_number;
}

} // namespace

QString History::text() const
{
    QStringList parts{QStringLiteral("type=%1").arg(type),
                      QStringLiteral("time=%1").arg(return_time),
                      QStringLiteral("by-time=%1").arg(int(return_time_en)),
                      QStringLiteral("restore=%1").arg(int(restore_switch))};
    QStringList numbers;
    for (const int item : items)
        numbers.append(QString::number(item));
    parts.append(QStringLiteral("items=") + numbers.join(QLatin1Char(',')));
    for (const Event& event : events)
        parts.append(eventText(event));
    return parts.join(QLatin1Char(' '));
}

History History::fromText(const QString& text, QString* problem)
{
    History history;
    for (const QString& part : text.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const int sign = part.indexOf(QLatin1Char('='));
        Event event{};
        if (sign >= 0 ? !readSetting(part.left(sign), part.mid(sign + 1), &history)
                      : !readEvent(part, &event)) {
            *problem = QStringLiteral("'%1' is no part of a history").arg(part);
            break;
        }
        if (sign < 0)
            history.events.push_back(event);
    }
    return history;
}

ServedItem itemOf(const History& history, int index)
{
    const int choice = history.items[std::size_t(index)];
    const bool has_name_of_first = choice == item_types;
    const bool has_id_of_first = choice == item_types + 1;
    ServedItem item;
    item.name = QStringLiteral("n%1").arg(has_name_of_first ? 0 : index);
    item.id = QStringLiteral("d%1").arg(has_id_of_first ? 0 : index);
    item.type = QLatin1String(type_names[choice < item_types ? choice : 0]);
    return item;
}

QByteArray writtenBytes(int pattern)
{
    static const char* const patterns[] = {"0500",       "",         "05",       "3412",
                                           "FFFF",       "AB00",     "34120000", "ABCD0000",
                                           "4849004100", "0000C03F", "4142",     "00000080"};
    return QByteArray::fromHex(patterns[std::size_t(pattern) % std::size(patterns)]);
}
