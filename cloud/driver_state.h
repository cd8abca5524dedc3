#ifndef CLOUD_DRIVER_STATE_H
#define CLOUD_DRIVER_STATE_H

#include "cloud/monitor_data_item.h"
#include "property/property_tovik_iot.h"

#include <QElapsedTimer>
#include <QHash>
#include <QMutex>
#include <QQueue>
#include <QVector>

struct DataItemType;

/// What has been counted, at one moment: the driver's properties of these names, which say more.
struct DriverNumbers
{
    /// What a time says while there is none.
    static const int none = -1;

    bool connected = false;
    int cycle_count = 0;
    int cycle_milliseconds = none;
    int longest_cycle_milliseconds = none;
    uint read_count = 0;
    uint write_count = 0;
    uint failed_write_count = 0;
    int reconnect_count = 0;
    int last_error = 0;
    int last_error_age = none;
};

/// What the threads of driver and client share, under one lock: the served items with their values
/// and ages, and what has been counted.
///
/// The lock is held for copies and assignments only, never across a wait, a signal or a request, so
/// no host request waits for the network. All else in the configuration needs no lock: the client
/// alone touches the groups.
///
/// The items' names and types never change while they are served. They are looked up in an index
/// that is made once: a host's request takes the same time whatever the number of items.
class DriverState
{
public:
    enum
    {
        most_untaken = 8
    };

    /// \param property the shared configuration; not owned. Its items must have been added.
    explicit DriverState(PropertyTovikIot* property);

    /// \name For the client
    /// @{

    /// The number of served items.
    int size() const;
    /// A copy of the item at \a index, which must be below size().
    PropertyTovikIotDataItem copy(int index) const;
    /// A new cycle begins: forgets the reads of one that was not handed over.
    void cycleBegun();
    /// The service has answered a read with a value.
    /// \param taken whether the value is of the item's type
    void valueRead(bool taken);
    /// The values read since cycleBegun() are on their way to the driver.
    void valuesSent();
    /// Whether \a values, read since cycleBegun(), need not be sent: most_untaken such lists wait
    /// for the driver, whose thread is blocked, and it takes these with the last of them. Of each
    /// item one value is kept, however long that lasts.
    bool keepsBack(const QList<MonitorDataItem>& values);
    /// All served items have been read in one cycle of \a milliseconds.
    void cycleDone(qint64 milliseconds);
    /// A login has succeeded and the catalogue is there.
    void connected();
    void disconnected();
    bool isConnected() const;
    /// A write has ended.
    void writeDone(bool taken);
    /// An operation has failed with \a result.
    void failed(int result);
    /// @}

    /// \name For the driver
    /// @{

    /// The first item of that name, or -1.
    int indexOf(const QString& name) const;
    /// The type of the item at \a index; null for an unknown one.
    const DataItemType* typeOf(int index) const;
    /// The cached value of the item at \a index.
    QVariant value(int index) const;
    /// Assigns it.
    void setValue(int index, const QVariant& value);
    /// Takes the values that a cycle has read: each item that of the first entry with its id.
    void takeValues(const QList<MonitorDataItem>& values);
    /// @}

    /// \name For any thread
    /// @{

    DriverNumbers numbers() const;
    /// The driver's property of that name.
    QVariantList itemAges() const;
    /// @}

private:
    Q_DISABLE_COPY(DriverState)

    struct Kept
    {
        QVariant value;
        qint64 read_at;
    };

    void take(int index, const QVariant& value, qint64 read_at);
    qint64 now() const;
    int since(qint64 moment) const;

    PropertyTovikIot* property_;
    QHash<QString, int> index_of_name_;
    QVector<const DataItemType*> types_;
    QElapsedTimer clock_;
    /// When each value of the running cycle was read, in the order of the reads. The client's
    /// alone.
    QVector<qint64> read_at_;
    mutable QMutex lock_; ///< Of all that follows, and of the items' cached values.
    DriverNumbers numbers_;
    int connect_count_;
    qint64 failed_at_;
    QQueue<QVector<qint64>> sent_; ///< The same of the cycles that are on their way to the driver.
    QHash<QString, Kept> kept_;    ///< Newer than all that is on its way, by the items' ids.
    QVector<qint64> taken_at_;     ///< The same of the values that the driver has.
};

#endif
