#include "cloud/served_items.h"

#include <QMutexLocker>

ServedItems::ServedItems(PropertyTovikIot* property) : property_(property) {}

int ServedItems::size() const
{
    const QMutexLocker locker(&lock_);
    return property_->dataitems.size();
}

PropertyTovikIotDataItem ServedItems::copy(int index) const
{
    const QMutexLocker locker(&lock_);
    return property_->dataitems.at(index);
}

void ServedItems::setValue(int index, const QVariant& value)
{
    QVariant fresh(value);
    {
        const QMutexLocker locker(&lock_);
        property_->dataitems[index].value.swap(fresh);
    }
    // The old value goes outside the lock: freeing a long text takes its time.
}
