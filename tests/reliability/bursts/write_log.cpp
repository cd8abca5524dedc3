#include "tests/reliability/bursts/write_log.h"

#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>

QByteArray WriteLog::text(int number)
{
    return "burst-" + QByteArray::number(number);
}

WriteLog WriteLog::read(const QString& file)
{
    WriteLog log;
    QFile lines(file);
    if (!lines.open(QIODevice::ReadOnly))
        return log;
    const QRegularExpression write(
        QStringLiteral(" write \"[^\"]*\": status 200, .*\"value\":\"burst-(\\d+)\""));
    QSet<int> seen;
    int latest = -1;
    while (!lines.atEnd()) {
        const auto match = write.match(QString::fromUtf8(lines.readLine()));
        if (!match.hasMatch())
            continue;
        const int number = match.captured(1).toInt();
        if (seen.contains(number)) {
            ++log.repeated;
            continue;
        }
        seen.insert(number);
        if (number < latest)
            ++log.out_of_order;
        latest = std::max(latest, number);
    }
    log.arrived = seen.size();
    return log;
}
