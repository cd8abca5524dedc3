#include "cloud/served_items.h"

#include "cloud/data_item_type.h"

#include <QMutexLocker>

ServedItems::ServedItems(PropertyTovikIot* property) : property_(property)
{
    const QList<PropertyTovikIotDataItem>& items = property->dataitems;
    index_of_name_.reserve(items.size());
    types_.reserve(items.size());
    for (int i = 0; i < items.size(); ++i) {
        types_.append(findDataItemType(items.at(i).type));
        if (!index_of_name_.contains(items.at(i).name))
            index_of_name_.insert(items.at(i).name, i);
    }
}

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

int ServedItems::indexOf(const QString& name) const
{
    return index_of_name_.value(name, -1);
}

const DataItemType* ServedItems::typeOf(int index) const
{
    return types_.at(index);
}
