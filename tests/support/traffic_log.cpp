#include "tests/support/traffic_log.h"

#include <QMutexLocker>

namespace {

const char* const words[] = {"sent",  "taken",     "discarded", "ended",     "asked",
                             "named", "connected", "encrypted", "answering", "answered"};

QString lineOf(const Traffic& traffic)
{
    const QString word = QLatin1String(words[traffic.kind]);
    if (traffic.kind == Traffic::ended)
        return QString::fromLatin1("%1 0x%2").arg(word, QString::number(uint(traffic.code), 16));
    return QString::fromLatin1("%1 %2").arg(word, QString::fromLatin1(traffic.bytes.toHex()));
}

} // namespace

void TrafficLog::hear(const Traffic& traffic)
{
    const QMutexLocker locker(&lock_);
    all_ << traffic;
}

QStringList TrafficLog::takeLines()
{
    const QMutexLocker locker(&lock_);
    QStringList lines;
    for (; taken_ < all_.size(); ++taken_)
        lines << lineOf(all_.at(taken_));
    return lines;
}

QList<Traffic> TrafficLog::all() const
{
    const QMutexLocker locker(&lock_);
    return all_;
}

void TrafficLog::clear()
{
    const QMutexLocker locker(&lock_);
    all_.clear();
    taken_ = 0;
}
