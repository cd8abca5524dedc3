#include "benchmarks/host_caller.h"

namespace bench {

HostCaller::HostCaller(DrvInterface* driver)
    : driver_(driver),
      unit_name_(QLatin1String("Unit1")),
      link_name_(QLatin1String("Ethernet1"))
{
    connect(driver, SIGNAL(SigResponse(QString, QString, QByteArray, int)), this,
            SLOT(onResponse(QString, QString, QByteArray, int)));
}

const QByteArray& HostCaller::read(const QSharedPointer<AddrData>& address)
{
    Q_EMIT driver_->SigGetValuesByteArray(unit_name_, link_name_, 1, address);
    return answer_;
}

const QByteArray& HostCaller::write(const QSharedPointer<AddrData>& address,
                                    const QByteArray& bytes)
{
    Q_EMIT driver_->SigSetValuesByteArray(unit_name_, link_name_, 1, bytes, address);
    return answer_;
}

void HostCaller::onResponse(QString unit_name, QString link_name, QByteArray ba, int status)
{
    Q_UNUSED(unit_name)
    Q_UNUSED(link_name)
    Q_UNUSED(status)
    answer_ = ba;
}

} // namespace bench
