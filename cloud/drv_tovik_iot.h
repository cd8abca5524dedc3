#ifndef CLOUD_DRV_TOVIK_IOT_H
#define CLOUD_DRV_TOVIK_IOT_H

#include "cloud/monitor_data_item.h"
#include "interface/drv_interface.h"

#include <QPointer>
#include <QVariant>

class DrvEthernet;
class PropertyTovikIot;
class QThread;
class TovikIot;

/// The cloud driver, as the host's side of it: answers reads from a cache, forwards writes, and
/// turns the client's results into the status of every answer.
///
/// Lives in the host's thread. No request waits for the network. The host closes it by emitting
/// `DrvEthernet::EmitNotifyBeforeRelease` on the link, and deletes it then; a driver that is
/// deleted without having been closed leaves its client and its configuration behind, since the
/// client's thread still uses them.
class DrvTovikIot : public DrvInterface
{
    Q_OBJECT

public:
    /// Without a link: serves nothing and contacts nobody.
    DrvTovikIot();
    /// Reads the configuration from \a link (not owned), starts the client and returns at once.
    explicit DrvTovikIot(DrvEthernet* link);
    ~DrvTovikIot();

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

    void readSettings();
    void startClient();
    void connectClient();
    void disconnectClient();
    void endThread();
    int indexOf(const QString& name) const;
    void countError();

    QPointer<DrvEthernet> link_;
    PropertyTovikIot* property_;
    TovikIot* cloud_;
    QPointer<QThread> thread_;
    int err_code_;
    int err_count_;
    int err_handle_type_;
    int err_return_time_;
    int err_retry_count_;
    bool err_return_time_en_;
    bool err_restore_switch_bs_en_;
    bool closed_;
};

#endif
