#ifndef BENCHMARKS_HOST_CALLER_H
#define BENCHMARKS_HOST_CALLER_H

#include "interface/drv_interface.h"

namespace bench {

/// A host that emits requests on a driver and takes its answers.
class HostCaller : public QObject
{
    Q_OBJECT

public:
    explicit HostCaller(DrvInterface* driver);

    /// Emits a read and returns the bytes of the answer.
    const QByteArray& read(const QSharedPointer<AddrData>& address);
    /// Emits a write and returns the bytes of the answer.
    const QByteArray& write(const QSharedPointer<AddrData>& address, const QByteArray& bytes);

private Q_SLOTS:
    void onResponse(QString unit_name, QString link_name, QByteArray ba, int status);

private:
    DrvInterface* driver_;
    QString unit_name_;
    QString link_name_;
    QByteArray answer_;
};

} // namespace bench

#endif
