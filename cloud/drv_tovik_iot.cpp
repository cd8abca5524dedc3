#include "cloud/drv_tovik_iot.h"

#include "cloud/data_item_type.h"
#include "cloud/driver_status.h"
#include "cloud/tovik_iot.h"
#include "interface/drv_ethernet.h"

#include <QDebug>
#include <QHash>
#include <QMetaType>
#include <QScopedPointer>
#include <QThread>

DrvTovikIot::DrvTovikIot()
    : DrvInterface(0),
      link_(0),
      property_(0),
      cloud_(0),
      err_code_(0),
      err_count_(0),
      err_handle_type_(1),
      err_return_time_(1),
      err_retry_count_(2),
      err_return_time_en_(true),
      err_restore_switch_bs_en_(true),
      closed_(false)
{}

DrvTovikIot::DrvTovikIot(DrvEthernet* link) : DrvTovikIot()
{
    link_ = link;
    qRegisterMetaType<QSharedPointer<AddrData>>("QSharedPointer<AddrData>");
    qRegisterMetaType<PropertyTovikIot>("PropertyTovikIot");
    connect(this, SIGNAL(SigGetValuesByteArray(QString, QString, int, QSharedPointer<AddrData>)),
            this, SLOT(SlotGetValuesByteArray(QString, QString, int, QSharedPointer<AddrData>)));
    connect(
        this,
        SIGNAL(SigSetValuesByteArray(QString, QString, int, QByteArray, QSharedPointer<AddrData>)),
        this,
        SLOT(SlotSetValuesByteArray(QString, QString, int, QByteArray, QSharedPointer<AddrData>)));
    SlotInitialConnect();
}

DrvTovikIot::~DrvTovikIot()
{
    if (!closed_)
        return;
    // The client's thread has ended, so nobody uses these any more. The configuration goes last:
    // the client points to it.
    delete cloud_;
    QScopedPointer<PropertyTovikIot> property(property_);
    delete thread_.data();
}

void DrvTovikIot::SlotInitialConnect()
{
    qDebug() << "[DrvTovikIot] Initial";
    closed_ = false;
    readSettings();
    startClient();
    connectClient();
    Q_EMIT EmitInitialLater();
}

void DrvTovikIot::readSettings()
{
    const QVariant stored = link_->GetDriverSpecificData(QLatin1String("tovik_iot"));
    property_ = new PropertyTovikIot(qvariant_cast<PropertyTovikIot>(stored));
    // The copy shares its list with the host's variant. It is made our own now, while there is
    // one thread: later the first write would do it under the client's eyes.
    property_->dataitems.detach();

    err_handle_type_ =
        link_->GetDriverSpecificData(QLatin1String("tovik_iot_err_handle_type")).toInt();
    err_return_time_ =
        link_->GetDriverSpecificData(QLatin1String("tovik_iot_err_return_time")).toInt();
    err_retry_count_ =
        link_->GetDriverSpecificData(QLatin1String("tovik_iot_err_retry_count")).toInt();
    err_return_time_en_ =
        link_->GetDriverSpecificData(QLatin1String("tovik_iot_err_return_time_en")).toBool();
    err_restore_switch_bs_en_ =
        link_->GetDriverSpecificData(QLatin1String("tovik_iot_err_restore_switch_bs_en")).toBool();
}

void DrvTovikIot::startClient()
{
    cloud_ = new TovikIot(property_);
    cloud_->SetDrvLink(link_);
    cloud_->SetDrvErrHandle(err_handle_type_, err_return_time_, err_retry_count_,
                            err_return_time_en_, err_restore_switch_bs_en_);
    thread_ = new QThread;
    cloud_->moveToThread(thread_);
    thread_->start();
}

void DrvTovikIot::connectClient()
{
    connect(this, SIGNAL(EmitInitialLater()), cloud_, SLOT(SlotInitialLater()));
    connect(this, SIGNAL(EmitWriteValue(int, QVariant)), cloud_,
            SLOT(SlotWriteValue(int, QVariant)));
    connect(cloud_, SIGNAL(EmitGetMonitor(QList<MonitorDataItem>)), this,
            SLOT(SlotGetMonitor(QList<MonitorDataItem>)));
    connect(cloud_, SIGNAL(EmitUpdateErrCode(int)), this, SLOT(SlotUpdateErrCode(int)));
    connect(this, SIGNAL(EmitReconnect()), cloud_, SLOT(SlotReconnect()));
    connect(link_, SIGNAL(EmitNotifyBeforeRelease()), this, SLOT(SlotCloseConnect()),
            Qt::DirectConnection);
}

void DrvTovikIot::disconnectClient()
{
    disconnect(this, SIGNAL(EmitInitialLater()), cloud_, SLOT(SlotInitialLater()));
    disconnect(this, SIGNAL(EmitWriteValue(int, QVariant)), cloud_,
               SLOT(SlotWriteValue(int, QVariant)));
    disconnect(cloud_, SIGNAL(EmitGetMonitor(QList<MonitorDataItem>)), this,
               SLOT(SlotGetMonitor(QList<MonitorDataItem>)));
    disconnect(cloud_, SIGNAL(EmitUpdateErrCode(int)), this, SLOT(SlotUpdateErrCode(int)));
    disconnect(this, SIGNAL(EmitReconnect()), cloud_, SLOT(SlotReconnect()));
    if (link_)
        disconnect(link_, SIGNAL(EmitNotifyBeforeRelease()), this, SLOT(SlotCloseConnect()));
}

void DrvTovikIot::SlotCloseConnect()
{
    qDebug() << "[DrvTovikIot] Close";
    if (cloud_) {
        cloud_->Disconnect2Cloud();
        disconnectClient();
    }
    if (link_ && link_->state() == QAbstractSocket::ConnectedState)
        link_->disconnectFromHost();
    endThread();
    closed_ = true;
}

void DrvTovikIot::endThread()
{
    // Once handed to deleteLater, the thread may be gone when the host closes a second time.
    if (!thread_)
        return;
    thread_->quit();
    thread_->wait();
    thread_->deleteLater();
}

void DrvTovikIot::SlotUpdateErrCode(int result)
{
    err_code_ = driver_status::fromResult(result);
    qDebug() << "[DrvTovikIot] Update Error Code: " << err_code_;
}

void DrvTovikIot::SlotGetMonitor(QList<MonitorDataItem> update_list)
{
    QHash<QString, int> first_entry;
    for (int i = update_list.size() - 1; i >= 0; --i)
        first_entry.insert(update_list.at(i).dataitem_id, i);
    for (int i = 0; i < property_->dataitems.size(); ++i) {
        const int entry = first_entry.value(property_->dataitems.at(i).dataitem_id, -1);
        if (entry >= 0)
            cloud_->Items()->setValue(i, update_list.at(entry).value);
    }
}

int DrvTovikIot::indexOf(const QString& name) const
{
    return cloud_->Items()->indexOf(name);
}

void DrvTovikIot::SlotGetValuesByteArray(QString unit_name, QString link_name, int station_no,
                                         QSharedPointer<AddrData> addr)
{
    Q_UNUSED(station_no)
    const int index = indexOf(addr->address);
    const DataItemType* type = index >= 0 ? cloud_->Items()->typeOf(index) : 0;
    const QByteArray ba =
        type ? type->to_host(property_->dataitems.at(index).value, addr->data_length)
             : QByteArray(1, '\0');
    countError();
    Q_EMIT SigResponse(unit_name, link_name, ba, err_code_);
}

/// Counts the reads in a row that met an error; the second one asks the client to reconnect when
/// the settings leave reconnecting to the host's reads.
void DrvTovikIot::countError()
{
    if (err_code_ == 0) {
        err_count_ = 0;
        return;
    }
    ++err_count_;
    qDebug() << "[DrvTovikIot] SlotGetValuesByteArray: " << err_code_;
    const bool on_switch =
        err_handle_type_ == 1 && err_restore_switch_bs_en_ && !err_return_time_en_;
    if (err_count_ <= 1 || (!on_switch && err_handle_type_ != 3))
        return;
    qDebug() << "[DrvTovikIot] Retry by error handle type: " << err_handle_type_;
    err_count_ = 0;
    err_code_ = 0;
    Q_EMIT EmitReconnect();
}

void DrvTovikIot::SlotSetValuesByteArray(QString unit_name, QString link_name, int station_no,
                                         const QByteArray& ba, QSharedPointer<AddrData> addr)
{
    Q_UNUSED(station_no)
    const QByteArray answer(ba);
    const int index = indexOf(addr->address);
    if (index >= 0) {
        const DataItemType* type = cloud_->Items()->typeOf(index);
        const QVariant value = type ? type->from_host(answer) : QVariant();
        cloud_->Items()->setValue(index, value);
        Q_EMIT EmitWriteValue(index, value);
    }
    Q_EMIT SigResponse(unit_name, link_name, answer, err_code_);
}

int DrvTovikIot::cycleCount() const
{
    return metrics().cycleCount();
}

int DrvTovikIot::cycleMilliseconds() const
{
    return metrics().cycleMilliseconds();
}

int DrvTovikIot::longestCycleMilliseconds() const
{
    return metrics().longestCycleMilliseconds();
}

uint DrvTovikIot::readCount() const
{
    return metrics().readCount();
}

int DrvTovikIot::reconnectCount() const
{
    return metrics().reconnectCount();
}

int DrvTovikIot::lastError() const
{
    return metrics().lastError();
}

int DrvTovikIot::lastErrorAge() const
{
    return metrics().lastErrorAge();
}

QVariantList DrvTovikIot::itemAges() const
{
    QVariantList ages;
    for (int i = 0; i < metrics().itemCount(); ++i)
        ages.append(metrics().itemAge(i));
    return ages;
}

/// The client's numbers; without a client those of one that never did anything.
const DriverMetrics& DrvTovikIot::metrics() const
{
    static const DriverMetrics nothing(0);
    return cloud_ ? *cloud_->Metrics() : nothing;
}
