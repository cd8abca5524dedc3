#ifndef CLOUD_SERVED_ITEMS_H
#define CLOUD_SERVED_ITEMS_H

#include "property/property_tovik_iot.h"

#include <QMutex>

/// The one place where the threads of driver and client meet in the shared configuration: the
/// client copies a served item while the driver assigns its cached value.
///
/// Unlocked, that overlap tears the value's text and ends the process after a while. The lock is
/// held for one copy or one assignment only, never across a wait, a signal or a request, so no
/// host request waits for the network. All else in the configuration needs no lock: the driver
/// alone writes cached values, so it reads them freely, and the client alone touches the groups.
class ServedItems
{
public:
    /// \param property the shared configuration; not owned.
    explicit ServedItems(PropertyTovikIot* property);

    /// For the client: the number of served items.
    int size() const;
    /// For the client: a copy of the item at \a index, which must be below size().
    PropertyTovikIotDataItem copy(int index) const;
    /// For the driver: assigns the cached value of the item at \a index.
    void setValue(int index, const QVariant& value);

private:
    Q_DISABLE_COPY(ServedItems)

    PropertyTovikIot* property_;
    mutable QMutex lock_;
};

#endif
