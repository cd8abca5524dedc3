#include "tools/host/watch/watch_model.h"

#include <algorithm>

namespace tovik_host::watch {

WatchModel::WatchModel(const QVector<config::ItemConfig>& items, const QDateTime& now)
    : has_value_(items.size(), false),
      status_since_(now)
{
    for (const config::ItemConfig& item : items) {
        ItemState state;
        state.item = item;
        state.changed_at = now;
        items_ << state;
    }
}

bool WatchModel::take(int index, const driver::Answer& given, const QDateTime& now)
{
    ItemState& state = items_[index];
    const bool is_waited_for = given.arrived && numbers_.tells_ages && !ageOf(index);
    driver::Answer answer = given;
    if (is_waited_for)
        answer.bytes.clear();
    const bool changed = !has_value_.at(index) || is_waited_for != state.is_waited_for ||
                         answer.arrived != state.answer.arrived ||
                         answer.bytes != state.answer.bytes ||
                         answer.has_value != state.answer.has_value;
    state.answer = answer;
    status_of_ = answer.status_of;
    if (round_status_ == 0)
        round_status_ = answer.status;
    if (!changed)
        return false;
    has_value_[index] = true;
    state.is_waited_for = is_waited_for;
    state.value = answer.arrived && answer.has_value && !is_waited_for
                      ? value::decodeValue(*state.item.type, answer.bytes)
                      : std::nullopt;
    has_had_values_ = has_had_values_ || state.value;
    state.changed_at = now;
    return true;
}

int WatchModel::waitingCount() const
{
    return int(std::count_if(items_.begin(), items_.end(),
                             [](const ItemState& state) { return state.is_waited_for; }));
}

bool WatchModel::endRound(const QDateTime& now)
{
    const bool changed = round_status_ != status_;
    status_ = round_status_;
    round_status_ = 0;
    if (changed)
        status_since_ = now;
    return changed;
}

void WatchModel::takeNumbers(const value::DriverNumbers& numbers, qint64 moment)
{
    numbers_ = numbers;
    if (numbers.read_count)
        read_rate_.take(moment, *numbers.read_count);
}

} // namespace tovik_host::watch
