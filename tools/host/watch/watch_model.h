#ifndef TOOLS_HOST_WATCH_WATCH_MODEL_H
#define TOOLS_HOST_WATCH_WATCH_MODEL_H

#include "tools/host/config/config.h"
#include "tools/host/driver/driver_session.h"
#include "tools/host/value/metrics.h"

#include <QDateTime>
#include <QVector>

#include <optional>

namespace tovik_host::watch {

/// What is known of one watched item.
struct ItemState
{
    config::ItemConfig item;
    driver::Answer answer;        ///< The latest one; without bytes while no value has come.
    std::optional<QString> value; ///< The answer's bytes as text, if they are a value of the type.
    QDateTime changed_at;         ///< When the bytes changed last.
    bool is_waited_for = false;   ///< The service has not delivered a value yet.
    bool is_stale = false;        ///< The service has delivered nothing new for too long.
};

/// The watched items and the driver's status, as the rounds of reads show them.
class WatchModel
{
public:
    /// \param stale_cycles after so many cycles without news a value is stale; 0: never
    WatchModel(const QVector<config::ItemConfig>& items, const QDateTime& now,
               int stale_cycles = 0);

    /// Takes the answer for the item at \a index, which was asked for after the driver's numbers:
    /// what they call older than any value is what the driver's cache began with. True: it is
    /// another one than before.
    bool take(int index, const driver::Answer& given, const QDateTime& now);
    /// Ends a round: the driver's status is the first one of the round that is not 0; while an item
    /// ends the driver's cycle, the refusal. True: it, or that item, is another one than before.
    bool endRound(const QDateTime& now);
    /// Takes the driver's numbers at a moment, in milliseconds of a steady clock.
    void takeNumbers(const value::DriverNumbers& numbers, qint64 moment);
    /// Judges by these numbers which values are stale. Gives the indices of the items for which
    /// that is not as it was.
    QVector<int> judgeAges(const QDateTime& now);

    const QVector<ItemState>& items() const { return items_; }
    /// How many items have had no value yet.
    int waitingCount() const;
    int staleCount() const;
    /// Milliseconds without news after which a value is stale: so many cycles, each as long as the
    /// latest whole one and a second at least; 0: no value ever is.
    int staleAfter() const;
    /// Whether the driver has been connected to the service.
    bool wasConnected() const { return was_connected_; }
    /// Whether it is now, as far as the driver tells.
    bool isConnected() const { return numbers_.connected.value_or(status_ == 0); }
    /// How many values have come; one that stays as it is has come once.
    int valueCount() const { return value_count_; }
    /// The first item that was stale or had an error, with what it was and when; empty: none.
    const QString& firstTrouble() const { return first_trouble_; }
    int status() const { return status_; }
    value::StatusOf statusOf() const { return status_of_; }
    /// The status in words and code, with the item that ends the driver's cycle.
    QString statusText() const;
    /// The item at whose error the driver's cycle ends, so that no later one is asked for; -1: the
    /// service has refused none.
    int cycleEnd() const { return cycle_end_; }
    /// The service's error, that item, and how many are not reached; empty: there is none.
    QString cycleEndText() const;
    /// Whether the item at \a index has no news because the cycle ends before it.
    bool isNotReached(int index) const;
    /// Why there is no connection, as far as somebody has found it out since there is none.
    const QString& cause() const { return cause_; }
    void setCause(const QString& cause) { cause_ = cause; }
    const QDateTime& statusSince() const { return status_since_; }
    const value::DriverNumbers& numbers() const { return numbers_; }
    std::optional<double> readsPerSecond() const { return read_rate_.perSecond(); }
    /// Milliseconds since the service delivered the value of the item at \a index; nothing: it
    /// never did, or the driver does not tell.
    std::optional<int> ageOf(int index) const { return numbers_.ages.value(index); }

private:
    void keepTrouble(const ItemState& state, const QString& what, const QDateTime& now);
    void takeRefusal(const QDateTime& now);
    int findCycleEnd(const QDateTime& now) const;

    QVector<ItemState> items_;
    QVector<bool> has_value_;
    int stale_cycles_;
    int value_count_ = 0;
    bool was_connected_ = false;
    QString first_trouble_;
    int status_ = 0;
    int round_status_ = 0; ///< Of the round so far.
    int latest_round_ = 0; ///< Of the round before.
    value::StatusOf status_of_ = value::StatusOf::service;
    QDateTime status_since_;
    int cycle_refusal_ = 0; ///< The service's latest error, if it came in a cycle; no login's.
    QDateTime refused_at_;  ///< When the status was an error of the service last.
    int cycle_end_ = -1;
    QString cause_;
    value::DriverNumbers numbers_;
    value::ReadRate read_rate_;
};

} // namespace tovik_host::watch

#endif
