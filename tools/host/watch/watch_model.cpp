#include "tools/host/watch/watch_model.h"

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

bool WatchModel::take(int index, const driver::Answer& answer, const QDateTime& now)
{
    ItemState& state = items_[index];
    const bool changed = !has_value_.at(index) || answer.arrived != state.answer.arrived ||
                         answer.bytes != state.answer.bytes ||
                         answer.has_value != state.answer.has_value;
    state.answer = answer;
    status_of_ = answer.status_of;
    if (round_status_ == 0)
        round_status_ = answer.status;
    if (!changed)
        return false;
    has_value_[index] = true;
    state.value = answer.arrived && answer.has_value
                      ? value::decodeValue(*state.item.type, answer.bytes)
                      : std::nullopt;
    state.changed_at = now;
    return true;
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
