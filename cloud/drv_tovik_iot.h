#ifndef CLOUD_DRV_TOVIK_IOT_H
#define CLOUD_DRV_TOVIK_IOT_H

#include "cloud/driver_state.h"
#include "cloud/error_handling.h"
#include "cloud/monitor_data_item.h"
#include "interface/drv_interface.h"

#include <QPointer>
#include <QVariant>

class DrvEthernet;
class QThread;
class TovikIot;

/// The cloud driver, as the host's side of it: answers reads from a cache, forwards writes, and
/// turns the client's results into the status of every answer.
///
/// Lives in the host's thread. No request waits for the network. The host closes it by emitting
/// `DrvEthernet::EmitNotifyBeforeRelease` on the link, and deletes it then; a driver that is
/// deleted without having been closed leaves its client and its configuration behind, since the
/// client's thread still uses them.
///
/// A host that wants to know how the conversation goes reads the properties, by their names and at
/// any time: `driver->property("cycle_milliseconds")`. They cost no wait and no request. Without a
/// link, and before anything has happened, counts are 0, and times and ages are -1.
class DrvTovikIot : public DrvInterface
{
    Q_OBJECT
    /// Cycles in which every served item was read.
    Q_PROPERTY(int cycle_count READ cycleCount)
    /// Duration of the latest such cycle in milliseconds.
    Q_PROPERTY(int cycle_milliseconds READ cycleMilliseconds)
    /// The longest one so far.
    Q_PROPERTY(int longest_cycle_milliseconds READ longestCycleMilliseconds)
    /// Reads that the service has answered with a value; starts again at 0 after 2^32 - 1.
    Q_PROPERTY(uint read_count READ readCount)
    /// Connections (login and catalogue) that were made after the first one.
    Q_PROPERTY(int reconnect_count READ reconnectCount)
    /// Result of the latest operation that failed: 256, or the service's code; 0 while none has.
    Q_PROPERTY(int last_error READ lastError)
    /// Milliseconds since that failure.
    Q_PROPERTY(int last_error_age READ lastErrorAge)
    /// Of every served item, in the order of the configuration: milliseconds since the service
    /// delivered the value that the driver has; -1 while it never did. A value of another type,
    /// which the driver does not take, does not count.
    Q_PROPERTY(QVariantList item_ages READ itemAges)
    /// Whether the client is connected: logged in, the catalogue loaded, and no failure since.
    Q_PROPERTY(bool connected READ isConnected)
    /// Writes that the service has taken.
    Q_PROPERTY(uint write_count READ writeCount)
    /// Writes that have failed, and may have reached the service all the same.
    Q_PROPERTY(uint failed_write_count READ failedWriteCount)

public:
    /// Without a link: serves nothing and contacts nobody.
    DrvTovikIot();
    /// Reads the configuration from \a link (not owned), starts the client and returns at once.
    explicit DrvTovikIot(DrvEthernet* link);
    ~DrvTovikIot();

    bool isConnected() const { return numbers().connected; }
    int cycleCount() const { return numbers().cycle_count; }
    int cycleMilliseconds() const { return numbers().cycle_milliseconds; }
    int longestCycleMilliseconds() const { return numbers().longest_cycle_milliseconds; }
    uint readCount() const { return numbers().read_count; }
    uint writeCount() const { return numbers().write_count; }
    uint failedWriteCount() const { return numbers().failed_write_count; }
    int reconnectCount() const { return numbers().reconnect_count; }
    int lastError() const { return numbers().last_error; }
    int lastErrorAge() const { return numbers().last_error_age; }
    QVariantList itemAges() const;

Q_SIGNALS:
    /// To the client: connect for the first time.
    void EmitInitialLater();
    /// To the client: write to the served item at \a index.
    void EmitWriteValue(int index, QVariant write_value);
    /// To the client: try to connect once.
    void EmitReconnect();

private Q_SLOTS:
    void SlotInitialConnect();
    void SlotCloseConnect();
    void SlotGetMonitor(QList<MonitorDataItem> update_list);
    void SlotUpdateErrCode(int result);
    void SlotGetValuesByteArray(QString unit_name, QString link_name, int station_no,
                                QSharedPointer<AddrData> addr);
    void SlotSetValuesByteArray(QString unit_name, QString link_name, int station_no,
                                const QByteArray& ba, QSharedPointer<AddrData> addr);

private:
    Q_DISABLE_COPY(DrvTovikIot)

    void readConfiguration();
    void startClient();
    void wire(bool connected);
    void endThread();
    void countError();
    DriverNumbers numbers() const;

    QPointer<DrvEthernet> link_;
    PropertyTovikIot* property_;
    DriverState* state_;
    TovikIot* cloud_;
    QPointer<QThread> thread_;
    int err_code_;
    int err_count_;
    ErrorHandling error_handling_;
    bool closed_;
};

#endif
