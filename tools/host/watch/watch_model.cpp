#include "tools/host/watch/watch_model.h"

#include <algorithm>
#include <functional>

namespace tovik_host::watch {

WatchModel::WatchModel(const QVector<config::ItemConfig>& items, const QDateTime& now,
                       int stale_cycles)
    : has_value_(items.size(), false),
      stale_cycles_(stale_cycles),
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
    if (!answer.arrived)
        keepTrouble(state, u"not answered by the driver"_s, now);
    else if (answer.status != 0)
        keepTrouble(state, value::statusTextWithCode(answer.status, answer.status_of), now);
    if (!changed)
        return false;
    has_value_[index] = true;
    state.is_waited_for = is_waited_for;
    state.value = answer.arrived && answer.has_value && !is_waited_for
                      ? config::valueOf(state.item, answer.bytes)
                      : std::nullopt;
    value_count_ += state.value ? 1 : 0;
    if (!state.value && !is_waited_for)
        keepTrouble(state, u"no value of its type"_s, now);
    state.changed_at = now;
    return true;
}

void WatchModel::keepTrouble(const ItemState& state, const QString& what, const QDateTime& now)
{
    if (first_trouble_.isEmpty()) {
        first_trouble_ =
            u"%1 was %2 at %3"_s.arg(state.item.name, what, now.toString(u"HH:mm:ss"_s));
    }
}

int WatchModel::waitingCount() const
{
    return int(std::count_if(items_.begin(), items_.end(), std::mem_fn(&ItemState::is_waited_for)));
}

int WatchModel::staleCount() const
{
    return int(std::count_if(items_.begin(), items_.end(), std::mem_fn(&ItemState::is_stale)));
}

int WatchModel::staleAfter() const
{
    // Cycles begin at whole seconds of the driver's clock.
    const int cycle_seconds = qMax(1, (numbers_.cycle.value_or(0) + 999) / 1000);
    return stale_cycles_ * cycle_seconds * 1000;
}

QVector<int> WatchModel::judgeAges(const QDateTime& now)
{
    QVector<int> changed;
    for (int i = 0; i < items_.size(); ++i) {
        ItemState& state = items_[i];
        const bool is_stale = stale_cycles_ > 0 && ageOf(i).value_or(0) > staleAfter();
        if (is_stale != state.is_stale)
            changed << i;
        state.is_stale = is_stale;
        if (is_stale)
            keepTrouble(state, u"stale"_s, now);
    }
    return changed;
}

bool WatchModel::endRound(const QDateTime& now)
{
    const int previous = status_;
    const int previous_end = cycle_end_;
    takeRefusal(now);
    cycle_end_ = findCycleEnd(now);
    // A driver that is refused an item connects anew, and looks well until it is refused again.
    status_ = round_status_ == 0 && cycle_end_ >= 0 ? cycle_refusal_ : round_status_;
    latest_round_ = round_status_;
    round_status_ = 0;
    if (status_ != previous)
        status_since_ = now;
    if (isConnected())
        cause_.clear();
    return status_ != previous || cycle_end_ != previous_end;
}

/// Takes what the service has refused in this round, if it has.
void WatchModel::takeRefusal(const QDateTime& now)
{
    if (value::isServiceError(round_status_)) {
        if (round_status_ != latest_round_)
            cycle_refusal_ = latest_round_ == 0 && was_connected_ ? round_status_ : 0;
        refused_at_ = now;
    } else if (round_status_ != 0) {
        cycle_refusal_ = 0;
    }
}

int WatchModel::findCycleEnd(const QDateTime& now) const
{
    const int shortest_while = 3000;
    if (cycle_refusal_ == 0 || refused_at_.msecsTo(now) > qMax(shortest_while, staleAfter()))
        return -1;
    const auto end = std::find_if(items_.begin(), items_.end(), [](const ItemState& state) {
        return state.is_waited_for || state.is_stale;
    });
    return end == items_.end() ? -1 : int(end - items_.begin());
}

bool WatchModel::isNotReached(int index) const
{
    const ItemState& state = items_.at(index);
    return cycle_end_ >= 0 && index > cycle_end_ && (state.is_waited_for || state.is_stale);
}

QString WatchModel::cycleEndText() const
{
    if (cycle_end_ < 0)
        return QString();
    int count = 0;
    for (int i = 0; i < items_.size(); ++i)
        count += isNotReached(i) ? 1 : 0;
    const QString text = u"%1: %2 ends the cycle"_s.arg(
        value::statusTextWithCode(cycle_refusal_, status_of_), items_.at(cycle_end_).item.name);
    return count == 0 ? text : text + u", items not reached: %1"_s.arg(count);
}

QString WatchModel::statusText() const
{
    return status_ == 0 || cycle_end_ < 0 ? value::statusTextWithCode(status_, status_of_)
                                          : cycleEndText();
}

void WatchModel::takeNumbers(const value::DriverNumbers& numbers, qint64 moment)
{
    numbers_ = numbers;
    was_connected_ = was_connected_ || numbers.connected.value_or(false);
    if (numbers.read_count)
        read_rate_.take(moment, *numbers.read_count);
}

} // namespace tovik_host::watch
