#include "tools/host/driver/device_host.h"

#include "tools/host/terminal/exit_code.h"

#include "interface/addr_data.h"

#include <QFileInfo>
#include <QMutexLocker>
#include <QSharedPointer>

namespace tovik_host::driver {

namespace {

/// The first byte is not zero on any processor.
const quintptr stop_value = ~quintptr(0);

/// "modbus_drv" of ".../libmodbus_drv.so.1".
QString driverName(const QString& library)
{
    QString name = QFileInfo(library).fileName().section(u'.', 0, 0);
    if (name.startsWith(QLatin1String("lib")))
        name.remove(0, 3);
    return name;
}

QSharedPointer<AddrData> addressOf(const config::ItemConfig& item)
{
    const QSharedPointer<AddrData> address(new AddrData);
    address->field1 = item.request.field1;
    address->address = item.request.address;
    address->data_length = item.type->size > 0 ? item.type->size * item.elements : item.length;
    address->extra1 = item.request.extra1;
    address->extra2 = item.request.extra2;
    return address;
}

Answer offline(const QString& problem)
{
    return {true, QByteArray(), value::offline_status, false, value::StatusOf::device, problem};
}

} // namespace

DeviceSession::DeviceSession(const Plugin& plugin, const DeviceConfig& config)
    : plugin_(plugin),
      config_(config),
      driver_name_(driverName(plugin.path()))
{}

DeviceSession::~DeviceSession()
{
    if (driver_)
        link_->announceRelease();
    const QMutexLocker locker(&driver_lock_);
    driver_.reset();
}

QString DeviceSession::open()
{
    qRegisterMetaType<QSharedPointer<AddrData>>("QSharedPointer<AddrData>");
    link_ = DeviceLink::make(config_);
    if (!link_->open(config_.open_milliseconds, stopped_))
        return stopped_ ? u"interrupted"_s : link_->problem();
    const QMutexLocker locker(&driver_lock_);
    driver_.reset(plugin_.createDriver(&driver_name_, link_->serial(), link_->ethernet()));
    driver_->unit_list = &unit_list_;
    // By text, as the driver may be compiled from other sources than this program; direct, as each
    // request is answered before its emission returns.
    connect(driver_.get(), SIGNAL(SigResponse(QString, QString, QByteArray, int)), this,
            SLOT(onResponse(QString, QString, QByteArray, int)), Qt::DirectConnection);
    connect(driver_.get(), SIGNAL(SigTransparentResponse(QByteArray, int)), this,
            SLOT(take(QByteArray, int)), Qt::DirectConnection);
    return QString();
}

void DeviceSession::stop()
{
    stopped_ = true;
    const QMutexLocker locker(&driver_lock_);
    // The driver reads its flag without a lock; that is how the interface has it.
    if (driver_)
        driver_->stop_flag = stop_value;
}

Answer DeviceSession::read(const config::ItemConfig& item)
{
    return askOnOpenLink([&] { emitRead(item); });
}

Answer DeviceSession::readAgain(const config::ItemConfig& item)
{
    if (!link_->isUp()) {
        // What has become of the link says more than what comes of the next attempt.
        const QString problem = link_->problem();
        if (!link_->tend(config_.open_milliseconds))
            return offline(problem);
    }
    return ask([&] { emitRead(item); });
}

Answer DeviceSession::write(const config::ItemConfig& item, const QByteArray& bytes)
{
    return askOnOpenLink([&] {
        Q_EMIT driver_->SigSetValuesByteArray(config_.unit, u"link"_s, item.request.station, bytes,
                                              addressOf(item));
    });
}

Answer DeviceSession::sendRaw(const QByteArray& request)
{
    return askOnOpenLink([&] { driver_->RunTransparentRequest(request); });
}

bool DeviceSession::supportsRaw()
{
    return driver_->IsTransparentModeSupported();
}

void DeviceSession::emitRead(const config::ItemConfig& item)
{
    Q_EMIT driver_->SigGetValuesByteArray(config_.unit, u"link"_s, item.request.station,
                                          addressOf(item));
}

Answer DeviceSession::askOnOpenLink(const std::function<void()>& request)
{
    if (!link_->open(config_.open_milliseconds, stopped_))
        return offline(link_->problem());
    return ask(request);
}

Answer DeviceSession::ask(const std::function<void()>& request)
{
    answer_ = Answer();
    answer_.status_of = value::StatusOf::deviceWith(plugin_.resultCodes());
    if (!stopped_)
        request();
    if (answer_.status != 0 && !link_->isUp())
        answer_.link_problem = link_->problem();
    return answer_;
}

void DeviceSession::take(QByteArray bytes, int status)
{
    answer_.arrived = true;
    answer_.bytes = bytes;
    answer_.status = status;
    answer_.has_value = status == 0;
}

void DeviceSession::onResponse(QString, QString, QByteArray bytes, int status)
{
    take(bytes, status);
}

} // namespace tovik_host::driver
