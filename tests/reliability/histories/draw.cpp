#include "tests/reliability/histories/draw.h"

#include "tests/reliability/histories/model.h"

namespace draw {

namespace {

/// From 0 to below \a end.
int below(std::mt19937_64* random, int end)
{
    return int((*random)() % std::uint64_t(end));
}

bool oneIn(std::mt19937_64* random, int chances)
{
    return below(random, chances) == 0;
}

Event replyTo(std::mt19937_64* random, const Mood& mood, int outstanding)
{
    Event event{Event::reply};
    // The innermost one lets most go on.
    event.a = below(random, 5) < 3 ? outstanding - 1 : below(random, outstanding);
    event.b = oneIn(random, mood.good) ? below(random, replies::kinds().size()) : 0;
    event.c = below(random, 1000);
    return event;
}

} // namespace

Mood mood(std::mt19937_64* random)
{
    static const Mood moods[] = {{50, 4, 14, 2, 15}, {50, 4, 14, 2, 15},  {50, 20, 14, 2, 15},
                                 {50, 2, 14, 2, 15}, {12, 4, 30, 20, 15}, {70, 30, 8, 5, 15},
                                 {60, 40, 40, 1, 1}};
    return moods[below(random, 7)];
}

History setup(std::mt19937_64* random)
{
    static const int return_times[] = {1, 1, 2, 5, 0};
    static const int item_counts[] = {0, 1, 1, 2, 2, 3, 5};
    History history;
    history.type = below(random, 5);
    history.return_time = return_times[below(random, 5)];
    history.return_time_en = oneIn(random, 2);
    history.restore_switch = oneIn(random, 2);
    history.items.resize(std::size_t(item_counts[below(random, 7)]));
    for (int& item : history.items)
        item = below(random, item_choices);
    return history;
}

int length(std::mt19937_64* random)
{
    return 5 + below(random, 56);
}

Event event(std::mt19937_64* random, const Mood& mood, const Model& model)
{
    const int outstanding = int(model.outstanding().size());
    const bool is_open = !model.isClosed();
    const struct
    {
        Event::Kind kind;
        int weight;
    } choices[] = {
        {Event::reply, outstanding > 0 ? mood.reply : 0},
        {Event::client, is_open && model.hasForClient() ? 25 : 0},
        {Event::host, model.hasForHost() ? mood.host : 0},
        {Event::timer, model.nextDue() != Model::never ? mood.timer : 0},
        {Event::wait, 8},
        {Event::read, 12},
        {Event::write, 9},
        {Event::close, is_open ? 1 : 0},
        {Event::open, is_open ? 0 : 30},
    };
    int sum = 0;
    for (const auto& choice : choices)
        sum += choice.weight;
    int left = below(random, sum);
    Event event{Event::reply};
    for (const auto& choice : choices) {
        if (left < choice.weight) {
            event.kind = choice.kind;
            break;
        }
        left -= choice.weight;
    }
    if (event.kind == Event::reply)
        return replyTo(random, mood, outstanding);
    if (event.kind == Event::wait)
        event.a = below(random, 1200);
    if (event.kind == Event::read || event.kind == Event::write) {
        event.a = below(random, 6);
        event.b = below(random, 12);
        event.c = event.kind == Event::write ? 1 + below(random, mood.most_once) : 0;
    }
    return event;
}

} // namespace draw
