#include "benchmarks/fixed_answer.h"

#include <algorithm>

namespace bench {

FixedAnswer::FixedAnswer(const QByteArray& bytes, const std::vector<QString>& names)
    : bytes_(bytes),
      names_(names)
{
    connect(this, SIGNAL(SigGetValuesByteArray(QString, QString, int, QSharedPointer<AddrData>)),
            this, SLOT(onRead(QString, QString, int, QSharedPointer<AddrData>)));
    connect(
        this,
        SIGNAL(SigSetValuesByteArray(QString, QString, int, QByteArray, QSharedPointer<AddrData>)),
        this, SLOT(onWrite(QString, QString, int, QByteArray, QSharedPointer<AddrData>)));
}

void FixedAnswer::onRead(QString unit_name, QString link_name, int station_no,
                         QSharedPointer<AddrData> addr)
{
    Q_UNUSED(station_no)
    if (!names_.empty()) {
        const QString& address = addr->address;
        if (std::find_if(names_.begin(), names_.end(), [&address](const QString& name) {
                return name == address;
            }) == names_.end())
            return;
    }
    Q_EMIT SigResponse(unit_name, link_name, bytes_, 0);
}

void FixedAnswer::onWrite(QString unit_name, QString link_name, int station_no,
                          const QByteArray& ba, QSharedPointer<AddrData> addr)
{
    Q_UNUSED(station_no)
    Q_UNUSED(ba)
    Q_UNUSED(addr)
    Q_EMIT SigResponse(unit_name, link_name, bytes_, 0);
}

ForwardingAnswer::ForwardingAnswer()
{
    connect(
        this,
        SIGNAL(SigSetValuesByteArray(QString, QString, int, QByteArray, QSharedPointer<AddrData>)),
        this, SLOT(onWrite(QString, QString, int, QByteArray, QSharedPointer<AddrData>)));
}

void ForwardingAnswer::onWrite(QString unit_name, QString link_name, int station_no,
                               const QByteArray& ba, QSharedPointer<AddrData> addr)
{
    Q_UNUSED(station_no)
    Q_UNUSED(addr)
    Q_EMIT EmitWriteValue(0, QVariant(1));
    Q_EMIT SigResponse(unit_name, link_name, ba, 0);
}

} // namespace bench
