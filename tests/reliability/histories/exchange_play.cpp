#include "tests/reliability/histories/exchange_play.h"

#include "tests/reliability/histories/exchange_library.h"
#include "tests/reliability/histories/exchange_model.h"

#include <functional>

namespace exchange_play {

namespace {

int below(std::mt19937_64* random, int end)
{
    return int((*random)() % std::uint64_t(end));
}

ExchangeEvent drawn(std::mt19937_64* random)
{
    using Event = ExchangeEvent;
    static const Event::Kind kinds[] = {Event::behave, Event::behave, Event::behave, Event::behave,
                                        Event::behave, Event::behave, Event::read,   Event::read,
                                        Event::read,   Event::write,  Event::write,  Event::raw,
                                        Event::input,  Event::units,  Event::link};
    static const int times[] = {0, 1, 3, 9, 10, 49, 50, 51, 60, 99, 119, 120, 200};
    Event event{kinds[below(random, 15)]};
    event.a = below(random, event.kind == Event::behave ? exchange::behaviours : 5);
    event.b = times[below(random, 13)];
    // A lost link and a stopped driver make a history dull: seldom.
    if (event.kind == Event::link && event.a > 0)
        event.a = 1;
    if (below(random, 200) == 0)
        event.kind = Event::stop;
    return event;
}

ExchangeHistory setup(std::mt19937_64* random)
{
    static const int timeouts[] = {0, 10, 30, 50, 60, 120};
    ExchangeHistory history;
    history.retries = below(random, 4);
    history.delay = below(random, 2) * 5;
    history.timeout = timeouts[below(random, 6)];
    history.has_state = below(random, 2) == 0;
    return history;
}

QString describe(const ExchangeEvent& event, const QStringList& library, const QStringList& model)
{
    ExchangeHistory one;
    one.events = {event};
    QString text = QStringLiteral("  at %1\n").arg(one.text().section(QLatin1Char(' '), -1));
    for (const QString& line : library)
        text += QStringLiteral("    library: %1\n").arg(line);
    for (const QString& line : model)
        text += QStringLiteral("    model:   %1\n").arg(line);
    return text;
}

/// Plays until something differs, or until \a next has no event.
QString played(const ExchangeHistory& history, const std::function<bool(ExchangeEvent*)>& next,
               Coverage* coverage)
{
    ExchangeLibrary library(history);
    ExchangeModel model(history);
    ExchangeEvent event{};
    std::size_t before = 0;
    while (!model.isStuck() && next(&event)) {
        library.play(event);
        model.play(event);
        const QStringList of_library = library.take();
        const QStringList of_model = model.take();
        if (of_library != of_model)
            return describe(event, of_library, of_model);
        if (!coverage)
            continue;
        // What was seen, without the clock.
        const QString seen = of_model.mid(0, of_model.size() - 1).join(QLatin1Char('|')) +
                             of_model.last().section(QLatin1Char(','), 1);
        const std::size_t after = qHash(seen, 1) * std::size_t(31) + event.kind;
        ++coverage->events;
        coverage->states.insert(after);
        coverage->transitions.insert(before * 1000003 + after);
        before = after;
    }
    return {};
}

} // namespace

QString difference(const ExchangeHistory& history, Coverage* coverage)
{
    auto event = history.events.begin();
    const auto next = [&](ExchangeEvent* to) {
        if (event == history.events.end())
            return false;
        *to = *event++;
        return true;
    };
    return played(history, next, coverage);
}

QString drawnDifference(std::mt19937_64* random, ExchangeHistory* history, Coverage* coverage)
{
    *history = setup(random);
    int left = 5 + below(random, 56);
    const auto next = [&](ExchangeEvent* to) {
        if (left-- == 0)
            return false;
        *to = drawn(random);
        history->events.push_back(*to);
        return true;
    };
    return played(*history, next, coverage);
}

ExchangeHistory shrunk(const ExchangeHistory& history)
{
    ExchangeHistory shortest = history;
    for (bool goes_on = true; goes_on;) {
        goes_on = false;
        for (std::size_t at = shortest.events.size(); at-- > 0;) {
            ExchangeHistory shorter = shortest;
            shorter.events.erase(shorter.events.begin() + std::ptrdiff_t(at));
            if (difference(shorter).isEmpty())
                continue;
            shortest = shorter;
            goes_on = true;
        }
    }
    return shortest;
}

} // namespace exchange_play
