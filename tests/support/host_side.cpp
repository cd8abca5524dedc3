#include "tests/support/host_side.h"

#include "interface/drv_ethernet.h"

namespace {

const int station = 7;

QSharedPointer<AddrData> addressOf(const QString& name, int data_length)
{
    QSharedPointer<AddrData> address(new AddrData);
    address->address = name;
    address->data_length = data_length;
    return address;
}

} // namespace

void HostSide::attach(DrvInterface* driver)
{
    driver_ = driver;
    connect(driver, SIGNAL(SigResponse(QString, QString, QByteArray, int)), this,
            SLOT(onResponse(QString, QString, QByteArray, int)));
}

DriverAnswer HostSide::read(const QString& name, int data_length)
{
    answers_.clear();
    Q_EMIT driver_->SigGetValuesByteArray(QLatin1String("unit"), QLatin1String("link"), station,
                                          addressOf(name, data_length));
    return onlyAnswer();
}

DriverAnswer HostSide::write(const QString& name, const QByteArray& bytes)
{
    answers_.clear();
    Q_EMIT driver_->SigSetValuesByteArray(QLatin1String("unit"), QLatin1String("link"), station,
                                          bytes, addressOf(name, 0));
    return onlyAnswer();
}

void HostSide::setErrorHandling(DrvEthernet* link, int type, int return_time, bool return_time_en,
                                bool restore_switch_en)
{
    QMap<QString, QVariant>& data = link->driver_specific_data;
    data[QLatin1String("tovik_iot_err_handle_type")] = type;
    data[QLatin1String("tovik_iot_err_return_time")] = return_time;
    data[QLatin1String("tovik_iot_err_retry_count")] = 2;
    data[QLatin1String("tovik_iot_err_return_time_en")] = return_time_en;
    data[QLatin1String("tovik_iot_err_restore_switch_bs_en")] = restore_switch_en;
}

void HostSide::onResponse(QString unit_name, QString link_name, QByteArray ba, int status)
{
    answers_.append(DriverAnswer{unit_name, link_name, ba, status});
    ++answer_count_;
}

int HostSide::answerCount() const
{
    return answer_count_;
}

DriverAnswer HostSide::onlyAnswer() const
{
    return answers_.size() == 1 ? answers_.first() : DriverAnswer{QString(), QString(), {}, -1};
}
