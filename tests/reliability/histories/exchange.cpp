#include "tests/reliability/histories/exchange.h"

#include <algorithm>

namespace {

const char* const event_names[] = {"behave", "read", "write", "raw",
                                   "input",  "link", "units", "stop"};

int argumentsOf(ExchangeEvent::Kind kind)
{
    if (kind == ExchangeEvent::behave)
        return 2;
    return kind == ExchangeEvent::raw || kind == ExchangeEvent::stop ? 0 : 1;
}

bool readEvent(const QString& text, ExchangeEvent* event)
{
    const QStringList parts = text.split(QLatin1Char(':'));
    int kind = 0;
    while (kind <= ExchangeEvent::stop && parts.first() != QLatin1String(event_names[kind]))
        ++kind;
    if (kind > ExchangeEvent::stop || parts.size() != argumentsOf(ExchangeEvent::Kind(kind)) + 1)
        return false;
    event->kind = ExchangeEvent::Kind(kind);
    bool is_first = true;
    bool is_second = true;
    if (parts.size() > 1)
        event->a = parts.at(1).toInt(&is_first);
    if (parts.size() > 2)
        event->b = parts.at(2).toInt(&is_second);
    return is_first && is_second && event->a >= 0 && event->b >= 0;
}

Behaviour after(int time, const QByteArray& bytes)
{
    Behaviour behaviour;
    behaviour.happenings = {{time, Happening::input, bytes}};
    return behaviour;
}

Behaviour split(int time, Happening::Kind between, const QByteArray& rest)
{
    Behaviour behaviour = after(time, "ab");
    if (between != Happening::input)
        behaviour.happenings.push_back({time + 1, between});
    behaviour.happenings.push_back({2 * time + 2, Happening::input, rest});
    return behaviour;
}

Behaviour ownCode(int code, bool ready, int abnormal)
{
    Behaviour behaviour = after(0, "abcd");
    behaviour.wait = Behaviour::own_code;
    behaviour.wait_code = code;
    behaviour.own_ready = ready;
    behaviour.abnormal_code = abnormal;
    return behaviour;
}

Behaviour with(Behaviour behaviour, int abnormal, int parse)
{
    behaviour.abnormal_code = abnormal;
    behaviour.parse_code = parse;
    return behaviour;
}

Behaviour refused(int length, int code)
{
    Behaviour behaviour;
    behaviour.built = length;
    behaviour.build_code = code;
    return behaviour;
}

Behaviour happens(int time, Happening::Kind kind)
{
    Behaviour behaviour;
    behaviour.happenings = {{time, kind}};
    return behaviour;
}

Behaviour line(Behaviour behaviour)
{
    behaviour.wait = Behaviour::for_line;
    return behaviour;
}

Behaviour anyLength(int time)
{
    Behaviour behaviour = line(with(after(time, "abcdef\n"), 0, 0));
    behaviour.built = -1;
    return behaviour;
}

} // namespace

QString ExchangeHistory::text() const
{
    QStringList parts{
        QStringLiteral("retries=%1").arg(retries), QStringLiteral("delay=%1").arg(delay),
        QStringLiteral("timeout=%1").arg(timeout), QStringLiteral("state=%1").arg(int(has_state))};
    for (const ExchangeEvent& event : events) {
        QString part = QLatin1String(event_names[event.kind]);
        if (argumentsOf(event.kind) > 0)
            part += QStringLiteral(":%1").arg(event.a);
        if (argumentsOf(event.kind) > 1)
            part += QStringLiteral(":%1").arg(event.b);
        parts.append(part);
    }
    return parts.join(QLatin1Char(' '));
}

ExchangeHistory ExchangeHistory::fromText(const QString& text, QString* problem)
{
    ExchangeHistory history;
    for (const QString& part : text.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const QString name = part.section(QLatin1Char('='), 0, 0);
        bool is_right = false;
        const int number = part.section(QLatin1Char('='), 1).toInt(&is_right);
        ExchangeEvent event{};
        if (name == QLatin1String("retries")) {
            history.retries = number;
        } else if (name == QLatin1String("delay")) {
            history.delay = number;
        } else if (name == QLatin1String("timeout")) {
            history.timeout = number;
        } else if (name == QLatin1String("state")) {
            history.has_state = number != 0;
        } else {
            is_right = readEvent(part, &event);
            history.events.push_back(event);
        }
        if (!is_right) {
            *problem = QStringLiteral("'%1' is no part of a history").arg(part);
            break;
        }
    }
    return history;
}

namespace exchange {

Behaviour behaviour(int kind, int time)
{
    const Behaviour all[behaviours] = {
        after(time, "abcd"),
        split(time, Happening::input, "cd"),
        after(time, "abc"),
        after(time, "abcde"),
        Behaviour(),
        with(after(time, "abcd"), 0x400A0002, 0x30000001),
        with(after(time, "abc"), 0, 0),
        with(after(time, "abc"), 0, 0x30000001),
        with(Behaviour(), 0, 0),
        line(after(time, "abc\n")),
        line(split(time, Happening::input, "c\n")),
        line(after(time, "abcd")),
        split(time, Happening::loss, "cd"),
        split(time, Happening::stop, "cd"),
        split(time, Happening::unserve, "cde"),
        happens(time, Happening::unserve),
        ownCode(0x2002, time % 2 == 0, 0x400A0002),
        ownCode(time % 3 == 0 ? 0x1002 : 0x400A0000, time % 2 == 0, 0x400A0002),
        ownCode(time % 3 == 0 ? 0 : 7, time % 2 == 0, time % 5 == 0 ? 0 : 9),
        refused(0, 0),
        refused(Behaviour::expected, time % 2 == 0 ? 0x1002 : 0x55),
        anyLength(time),
    };
    return all[kind % behaviours];
}

QString unitName(int number)
{
    static const char* const names[unit_names] = {"A1", "{A}", "{B}", "{A}12", "{}"};
    return QLatin1String(names[number % unit_names]);
}

QStringList unitList(int number)
{
    static const char* const lists[unit_lists] = {"", "{A}12", "A1", "{B}x,{B}", "x{A},{A}1"};
    return QString::fromLatin1(lists[number % unit_lists])
        .split(QLatin1Char(','), Qt::SkipEmptyParts);
}

void World::sent(const Behaviour& behaviour)
{
    for (const Happening& happening : behaviour.happenings) {
        const Due due{now + happening.after, happening};
        const auto isLater = [&](const Due& other) { return other.at > due.at; };
        due_.insert(std::find_if(due_.begin(), due_.end(), isLater), due);
    }
    reach(now);
}

Behaviour World::next()
{
    if (planned.empty())
        return behaviour(0, 1);
    const Behaviour next = planned.front();
    planned.pop_front();
    return next;
}

void World::reach(qint64 moment)
{
    now = moment;
    for (; !due_.empty() && due_.front().at <= now; due_.pop_front()) {
        const Happening& happening = due_.front().happening;
        if (happening.kind == Happening::input && !is_lost)
            input += happening.bytes;
        is_lost = is_lost || happening.kind == Happening::loss;
        is_stopped = is_stopped || happening.kind == Happening::stop;
        if (happening.kind == Happening::unserve)
            units = QStringList{QStringLiteral("{other}")};
    }
}

} // namespace exchange
