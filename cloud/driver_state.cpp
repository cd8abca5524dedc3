#include "cloud/driver_state.h"

#include "cloud/data_item_type.h"

#include <QMutexLocker>

#include <limits>

namespace {

/// A moment that never was.
const qint64 never = -1;

int toInt(qint64 milliseconds)
{
    return int(qMin(milliseconds, qint64(std::numeric_limits<int>::max())));
}

/// Of each id the place of its first entry.
QHash<QString, int> firstEntries(const QList<MonitorDataItem>& values)
{
    QHash<QString, int> places;
    for (int i = values.size() - 1; i >= 0; --i)
        places.insert(values.at(i).dataitem_id, i);
    return places;
}

} // namespace

DriverState::DriverState(PropertyTovikIot* property)
    : property_(property),
      connect_count_(0),
      failed_at_(never),
      taken_at_(property->dataitems.size(), never)
{
    const QList<PropertyTovikIotDataItem>& items = property->dataitems;
    index_of_name_.reserve(items.size());
    types_.reserve(items.size());
    for (int i = 0; i < items.size(); ++i) {
        types_.append(findDataItemType(items.at(i).type));
        if (!index_of_name_.contains(items.at(i).name))
            index_of_name_.insert(items.at(i).name, i);
    }
    clock_.start();
}

int DriverState::size() const
{
    const QMutexLocker locker(&lock_);
    return property_->dataitems.size();
}

PropertyTovikIotDataItem DriverState::copy(int index) const
{
    const QMutexLocker locker(&lock_);
    return property_->dataitems.at(index);
}

void DriverState::cycleBegun()
{
    read_at_.clear();
}

void DriverState::valueRead(bool taken)
{
    const QMutexLocker locker(&lock_);
    ++numbers_.read_count;
    read_at_.append(taken ? now() : never);
}

void DriverState::valuesSent()
{
    const QMutexLocker locker(&lock_);
    sent_.enqueue(read_at_);
}

void DriverState::cycleDone(qint64 milliseconds)
{
    const QMutexLocker locker(&lock_);
    const int duration = toInt(milliseconds);
    ++numbers_.cycle_count;
    numbers_.cycle_milliseconds = duration;
    numbers_.longest_cycle_milliseconds = qMax(duration, numbers_.longest_cycle_milliseconds);
}

void DriverState::connected()
{
    const QMutexLocker locker(&lock_);
    numbers_.connected = true;
    numbers_.reconnect_count = connect_count_++;
}

void DriverState::disconnected()
{
    const QMutexLocker locker(&lock_);
    numbers_.connected = false;
}

bool DriverState::isConnected() const
{
    const QMutexLocker locker(&lock_);
    return numbers_.connected;
}

void DriverState::writeDone(bool taken)
{
    const QMutexLocker locker(&lock_);
    ++(taken ? numbers_.write_count : numbers_.failed_write_count);
}

void DriverState::failed(int result)
{
    const QMutexLocker locker(&lock_);
    numbers_.last_error = result;
    failed_at_ = now();
}

int DriverState::indexOf(const QString& name) const
{
    return index_of_name_.value(name, -1);
}

const DataItemType* DriverState::typeOf(int index) const
{
    return types_.at(index);
}

/// Without the lock: the driver alone assigns values.
QVariant DriverState::value(int index) const
{
    return property_->dataitems.at(index).value;
}

void DriverState::setValue(int index, const QVariant& value)
{
    QVariant fresh(value);
    {
        const QMutexLocker locker(&lock_);
        property_->dataitems[index].value.swap(fresh);
    }
    // The old value goes outside the lock: freeing a long text takes its time.
}

void DriverState::take(int index, const QVariant& value, qint64 read_at)
{
    property_->dataitems[index].value = value;
    if (read_at != never)
        taken_at_[index] = read_at;
}

void DriverState::takeValues(const QList<MonitorDataItem>& values)
{
    const QHash<QString, int> first_entry = firstEntries(values);
    const QMutexLocker locker(&lock_);
    const QVector<qint64> read_at = sent_.isEmpty() ? QVector<qint64>() : sent_.dequeue();
    const bool is_latest = sent_.isEmpty();
    for (int i = 0; i < property_->dataitems.size(); ++i) {
        const QString& id = property_->dataitems.at(i).dataitem_id;
        const int entry = first_entry.value(id, -1);
        if (entry >= 0)
            take(i, values.at(entry).value, read_at.value(entry, never));
        const QHash<QString, Kept>::const_iterator kept = kept_.constFind(id);
        if (is_latest && kept != kept_.constEnd())
            take(i, kept->value, kept->read_at);
    }
    if (is_latest)
        kept_.clear();
}

bool DriverState::keepsBack(const QList<MonitorDataItem>& values)
{
    const QHash<QString, int> first_entry = firstEntries(values);
    const QMutexLocker locker(&lock_);
    if (sent_.size() < most_untaken)
        return false;
    for (QHash<QString, int>::const_iterator it = first_entry.begin(); it != first_entry.end();
         ++it) {
        const Kept before = kept_.value(it.key(), Kept{QVariant(), never});
        const qint64 moment = read_at_.value(it.value(), never);
        const Kept kept = {values.at(it.value()).value, moment == never ? before.read_at : moment};
        kept_.insert(it.key(), kept);
    }
    return true;
}

DriverNumbers DriverState::numbers() const
{
    const QMutexLocker locker(&lock_);
    DriverNumbers numbers(numbers_);
    numbers.last_error_age = since(failed_at_);
    return numbers;
}

QVariantList DriverState::itemAges() const
{
    const QMutexLocker locker(&lock_);
    QVariantList ages;
    for (int i = 0; i < taken_at_.size(); ++i)
        ages.append(since(taken_at_.at(i)));
    return ages;
}

qint64 DriverState::now() const
{
    return clock_.elapsed();
}

int DriverState::since(qint64 moment) const
{
    return moment == never ? int(DriverNumbers::none) : toInt(now() - moment);
}
