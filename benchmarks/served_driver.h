#ifndef BENCHMARKS_SERVED_DRIVER_H
#define BENCHMARKS_SERVED_DRIVER_H

#include "cloud/drv_tovik_iot.h"
#include "interface/drv_ethernet.h"

#include <QThread>
#include <QVariant>

#include <atomic>
#include <memory>
#include <vector>

namespace bench {

/// Takes the writes that a driver hands to its client's thread, and does nothing with them: what a
/// client makes of a write is the network's time, not the driver's.
class WriteDrain : public QObject
{
    Q_OBJECT

public:
    enum ClientThread
    {
        sleeping, ///< It waits for events, as a client does between replies: a write wakes it up.
        busy      ///< It has no time now: writes queue up, and nobody is woken.
    };

    /// Takes the place of all receivers that \a driver's `EmitWriteValue` has.
    WriteDrain(DrvInterface* driver, ClientThread client_thread);
    ~WriteDrain();

    /// Counts a write as on its way. True when so many are that empty() is due.
    bool isDue();
    /// Waits until all writes have been taken, or takes them away.
    void empty();

private Q_SLOTS:
    void take(int index, QVariant value);

private:
    QThread thread_;
    int sent_;
    std::atomic<int> taken_;
};

/// A cloud driver with served items, as a host sets it up. Nobody is contacted.
class ServedDriver
{
public:
    /// \param type the type of all items
    ServedDriver(int count, const char* type, int data_length);
    ~ServedDriver();

    DrvInterface* driver();
    const std::vector<QString>& names() const;
    /// The next item's address, all items in turn.
    const QSharedPointer<AddrData>& nextAddress();

private:
    DrvEthernet link_;
    std::unique_ptr<DrvTovikIot> driver_;
    std::vector<QString> names_;
    std::vector<QSharedPointer<AddrData>> addresses_;
    std::size_t next_;
};

} // namespace bench

#endif
