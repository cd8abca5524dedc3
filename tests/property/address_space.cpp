#include "tests/property/address_space.h"

#include <QFile>
#include <QList>

qint64 peakAddressSpace()
{
    QFile status(QLatin1String("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmPeak:"))
            return line.mid(7).replace("kB", "").trimmed().toLongLong();
    }
    return -1;
}
