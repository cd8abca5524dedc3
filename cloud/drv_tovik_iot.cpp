#include "cloud/drv_tovik_iot.h"

#include "cloud/data_item_type.h"
#include "cloud/driver_status.h"
#include "cloud/tovik_iot.h"
#include "interface/drv_ethernet.h"
#include "interface/traffic.h"

#include <QDebug>
#include <QMetaType>
#include <QScopedPointer>
#include <QThread>

DrvTovikIot::DrvTovikIot()
    : DrvInterface(0),
      link_(0),
      property_(0),
      state_(0),
      cloud_(0),
      err_code_(0),
      err_count_(0),
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
    // The client's thread has ended, so nobody uses these any more. Each points to those below it.
    delete cloud_;
    delete state_;
    const QScopedPointer<PropertyTovikIot> property(property_);
    delete thread_.data();
}

void DrvTovikIot::SlotInitialConnect()
{
    qDebug() << "[DrvTovikIot] Initial";
    closed_ = false;
    readConfiguration();
    startClient();
    wire(true);
    Q_EMIT EmitInitialLater();
}

void DrvTovikIot::readConfiguration()
{
    const QVariant stored = link_->GetDriverSpecificData(QLatin1String("tovik_iot"));
    property_ = new PropertyTovikIot(qvariant_cast<PropertyTovikIot>(stored));
    error_handling_ = ErrorHandling::of(link_);
}

void DrvTovikIot::startClient()
{
    state_ = new DriverState(property_);
    cloud_ = new TovikIot(property_, state_);
    cloud_->SetDrvLink(link_);
    cloud_->SetTrafficListener(traffic::listenerOf(*link_));
    cloud_->SetDrvErrHandle(error_handling_.type, error_handling_.return_time,
                            error_handling_.retry_count, error_handling_.return_time_en,
                            error_handling_.restore_switch_bs_en);
    thread_ = new QThread;
    cloud_->moveToThread(thread_);
    thread_->start();
}

/// Connects driver, client and link, or disconnects them.
void DrvTovikIot::wire(bool connected)
{
    const struct
    {
        const QObject* sender;
        const char* signal;
        const QObject* receiver;
        const char* slot;
    } wires[] = {
        {this, SIGNAL(EmitInitialLater()), cloud_, SLOT(SlotInitialLater())},
        {this, SIGNAL(EmitWriteValue(int, QVariant)), cloud_, SLOT(SlotWriteValue(int, QVariant))},
        {cloud_, SIGNAL(EmitGetMonitor(QList<MonitorDataItem>)), this,
         SLOT(SlotGetMonitor(QList<MonitorDataItem>))},
        {cloud_, SIGNAL(EmitUpdateErrCode(int)), this, SLOT(SlotUpdateErrCode(int))},
        {this, SIGNAL(EmitReconnect()), cloud_, SLOT(SlotReconnect())},
        {link_, SIGNAL(EmitNotifyBeforeRelease()), this, SLOT(SlotCloseConnect())},
    };
    for (const auto& wire : wires) {
        if (!wire.sender) // the host has deleted the link already
            continue;
        if (!connected)
            disconnect(wire.sender, wire.signal, wire.receiver, wire.slot);
        else if (wire.sender == link_) // in the thread that is about to release the link
            connect(wire.sender, wire.signal, wire.receiver, wire.slot, Qt::DirectConnection);
        else
            connect(wire.sender, wire.signal, wire.receiver, wire.slot);
    }
}

void DrvTovikIot::SlotCloseConnect()
{
    qDebug() << "[DrvTovikIot] Close";
    if (cloud_) {
        cloud_->Disconnect2Cloud();
        wire(false);
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
    state_->takeValues(update_list);
}

void DrvTovikIot::SlotGetValuesByteArray(QString unit_name, QString link_name, int station_no,
                                         QSharedPointer<AddrData> addr)
{
    Q_UNUSED(station_no)
    const int index = state_->indexOf(addr->address);
    const DataItemType* type = index >= 0 ? state_->typeOf(index) : 0;
    const QByteArray ba =
        type ? type->to_host(state_->value(index), addr->data_length) : QByteArray(1, '\0');
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
    if (err_count_ <= 1 || !error_handling_.reconnectsByReads())
        return;
    qDebug() << "[DrvTovikIot] Retry by error handle type: " << error_handling_.type;
    err_count_ = 0;
    err_code_ = 0;
    Q_EMIT EmitReconnect();
}

void DrvTovikIot::SlotSetValuesByteArray(QString unit_name, QString link_name, int station_no,
                                         const QByteArray& ba, QSharedPointer<AddrData> addr)
{
    Q_UNUSED(station_no)
    const QByteArray answer(ba);
    const int index = state_->indexOf(addr->address);
    if (index >= 0) {
        const DataItemType* type = state_->typeOf(index);
        const QVariant value = type ? type->from_host(answer) : QVariant();
        state_->setValue(index, value);
        Q_EMIT EmitWriteValue(index, value);
    }
    Q_EMIT SigResponse(unit_name, link_name, answer, err_code_);
}

DriverNumbers DrvTovikIot::numbers() const
{
    return state_ ? state_->numbers() : DriverNumbers();
}

QVariantList DrvTovikIot::itemAges() const
{
    return state_ ? state_->itemAges() : QVariantList();
}
