#ifndef BENCHMARKS_FIXED_ANSWER_H
#define BENCHMARKS_FIXED_ANSWER_H

#include "interface/drv_interface.h"

#include <QVariant>

#include <vector>

namespace bench {

/// The peer of the driver's requests: the same signals with the same arguments, connected in the
/// same way, answered with bytes that are there already.
class FixedAnswer : public DrvInterface
{
    Q_OBJECT

public:
    /// \param names if not empty, the request's address is searched in them first
    FixedAnswer(const QByteArray& bytes, const std::vector<QString>& names);

private Q_SLOTS:
    void onRead(QString unit_name, QString link_name, int station_no,
                QSharedPointer<AddrData> addr);
    void onWrite(QString unit_name, QString link_name, int station_no, const QByteArray& ba,
                 QSharedPointer<AddrData> addr);

private:
    QByteArray bytes_;
    std::vector<QString> names_;
};

/// The same, but a write is also handed to another thread, by a bare queued signal of the kind that
/// the driver sends.
class ForwardingAnswer : public DrvInterface
{
    Q_OBJECT

public:
    ForwardingAnswer();

Q_SIGNALS:
    void EmitWriteValue(int index, QVariant write_value);

private Q_SLOTS:
    void onWrite(QString unit_name, QString link_name, int station_no, const QByteArray& ba,
                 QSharedPointer<AddrData> addr);
};

} // namespace bench

#endif
