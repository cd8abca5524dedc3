#ifndef CLOUD_SERVED_ITEMS_H
#define CLOUD_SERVED_ITEMS_H

#include "property/property_tovik_iot.h"

#include <QHash>
#include <QMutex>
#include <QVector>

struct DataItemType;

/// The one place where the threads of driver and client meet in the shared configuration: the
/// client copies a served item while the driver assigns its cached value.
///
/// Unlocked, that overlap tears the value's text and ends the process after a while. The lock is
/// held for one copy or one assignment only, never across a wait, a signal or a request, so no
/// host request waits for the network. All else in the configuration needs no lock: the driver
/// alone writes cached values, so it reads them freely, and the client alone touches the groups.
///
/// The items' names and types never change while they are served. They are looked up in an index
/// that is made once: a host's request takes the same time whatever the number of items.
class ServedItems
{
public:
    /// \param property the shared configuration; not owned. Its items must have been added.
    explicit ServedItems(PropertyTovikIot* property);

    /// For the client: the number of served items.
    int size() const;
    /// For the client: a copy of the item at \a index, which must be below size().
    PropertyTovikIotDataItem copy(int index) const;
    /// For the driver: assigns the cached value of the item at \a index.
    void setValue(int index, const QVariant& value);

    /// For the driver: the first item of that name, or -1.
    int indexOf(const QString& name) const;
    /// For the driver: the type of the item at \a index; null for an unknown one.
    const DataItemType* typeOf(int index) const;

private:
    Q_DISABLE_COPY(ServedItems)

    PropertyTovikIot* property_;
    QHash<QString, int> index_of_name_;
    QVector<const DataItemType*> types_;
    mutable QMutex lock_;
};

#endif
