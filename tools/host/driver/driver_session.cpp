#include "tools/host/driver/driver_session.h"

#include "tools/host/terminal/exit_code.h"
#include "tools/host/value/status_text.h"

#include "interface/addr_data.h"
#include "property/property_tovik_iot.h"

#include <QSharedPointer>
#include <QVariant>

namespace tovik_host::driver {

namespace {

const int station = 1;

QString unitName()
{
    return u"tovik-host"_s;
}

void fillErrorHandling(QMap<QString, QVariant>& settings, const config::ErrorHandling& handling)
{
    settings[u"tovik_iot_err_handle_type"_s] = handling.type;
    settings[u"tovik_iot_err_return_time"_s] = handling.return_time;
    settings[u"tovik_iot_err_retry_count"_s] = handling.retry_count;
    settings[u"tovik_iot_err_return_time_en"_s] = handling.return_time_enabled;
    settings[u"tovik_iot_err_restore_switch_bs_en"_s] = handling.restore_switch_enabled;
}

QSharedPointer<AddrData> addressOf(const QString& name, int data_length)
{
    const QSharedPointer<AddrData> address(new AddrData);
    address->address = name;
    address->data_length = data_length;
    return address;
}

} // namespace

DriverSession::DriverSession(const Plugin& plugin, const config::HostConfig& config,
                             const QVector<config::ItemConfig>& items)
    : link_(new DrvEthernet)
{
    qRegisterMetaType<QSharedPointer<AddrData>>("QSharedPointer<AddrData>");
    link_->link_name = u"link"_s;
    link_->driver_specific_data[u"tovik_iot"_s] =
        QVariant::fromValue(config::recordOf(config.service, items));
    fillErrorHandling(link_->driver_specific_data, config.error_handling);
    driver_.reset(plugin.createDriver(nullptr, nullptr, link_.data()));
    // By text, as the driver may be compiled from other sources than this program.
    connect(driver_.data(), SIGNAL(SigResponse(QString, QString, QByteArray, int)), this,
            SLOT(onResponse(QString, QString, QByteArray, int)));
}

DriverSession::~DriverSession()
{
    Q_EMIT link_->EmitNotifyBeforeRelease();
    driver_.reset();
}

Answer DriverSession::read(const QString& name, int data_length)
{
    answer_ = Answer();
    Q_EMIT driver_->SigGetValuesByteArray(unitName(), link_->link_name, station,
                                          addressOf(name, data_length));
    return answer_;
}

Answer DriverSession::write(const QString& name, const QByteArray& bytes)
{
    answer_ = Answer();
    Q_EMIT driver_->SigSetValuesByteArray(unitName(), link_->link_name, station, bytes,
                                          addressOf(name, bytes.size()));
    return answer_;
}

void DriverSession::onResponse(QString, QString, QByteArray bytes, int status)
{
    answer_.arrived = true;
    answer_.bytes = bytes;
    answer_.status = status;
}

value::OrderedJson jsonOf(const config::ItemConfig& item, const std::optional<QString>& value)
{
    if (item.elements == 1 || !value)
        return value::jsonValue(*item.type, value);
    value::OrderedJson values = value::OrderedJson::array();
    for (const QString& one : value->split(u' '))
        values.push_back(value::jsonValue(*item.type, one));
    return values;
}

void addStatus(value::OrderedJson& line, const Answer& answer)
{
    line["status"] =
        answer.arrived ? std::make_optional(value::statusCode(answer.status)) : std::nullopt;
    line["status_text"] =
        answer.arrived ? value::statusText(answer.status, answer.status_of) : u"no answer"_s;
}

void addAnswer(value::OrderedJson& line, const config::ItemConfig& item, const Answer& answer,
               const std::optional<QString>& value)
{
    line["item"] = item.name;
    line["type"] = item.type->name;
    line["value"] = jsonOf(item, value);
    line["bytes"] = answer.bytes.toHex().toStdString();
    addStatus(line, answer);
}

} // namespace tovik_host::driver
