#include "tests/reliability/stress/ledger.h"

#include <QMutexLocker>

#include <cstdio>

namespace {

const int printed_findings = 50;

} // namespace

quint32 Ledger::nextSequence()
{
    const QMutexLocker locker(&lock_);
    return ++sequence_;
}

quint32 Ledger::lastSequence() const
{
    const QMutexLocker locker(&lock_);
    return sequence_;
}

void Ledger::sent(int driver, const QByteArray& key)
{
    const QMutexLocker locker(&lock_);
    ++writes_sent_;
    ++outstanding_[driver];
    driver_of_write_.insert(key, driver);
}

void Ledger::arrived(const QByteArray& key)
{
    const QMutexLocker locker(&lock_);
    // A second time: Qt repeats a post whose connection was lost before the answer.
    const int driver = driver_of_write_.take(key);
    if (driver == 0)
        return;
    ++writes_arrived_;
    --outstanding_[driver];
}

int Ledger::outstanding(int driver) const
{
    const QMutexLocker locker(&lock_);
    return outstanding_.value(driver);
}

QByteArray Ledger::closed(int driver)
{
    const QMutexLocker locker(&lock_);
    for (const QByteArray& key : driver_of_write_.keys(driver))
        driver_of_write_.remove(key);
    outstanding_.remove(driver);
    const QByteArray last = asked_last_.take(driver);
    ++closed_after_[last];
    return last;
}

void Ledger::asked(int driver, const QByteArray& operation)
{
    const QMutexLocker locker(&lock_);
    ++requests_;
    asked_last_.insert(driver, operation);
}

void Ledger::failed()
{
    const QMutexLocker locker(&lock_);
    ++faults_;
}

void Ledger::finding(const QString& text)
{
    const QMutexLocker locker(&lock_);
    if (++findings_ <= printed_findings)
        std::fprintf(stderr, "FINDING %d: %s\n", findings_, qPrintable(text));
}

int Ledger::findings() const
{
    const QMutexLocker locker(&lock_);
    return findings_;
}

qint64 Ledger::writesSent() const
{
    const QMutexLocker locker(&lock_);
    return writes_sent_;
}

qint64 Ledger::writesArrived() const
{
    const QMutexLocker locker(&lock_);
    return writes_arrived_;
}

qint64 Ledger::requests() const
{
    const QMutexLocker locker(&lock_);
    return requests_;
}

qint64 Ledger::faults() const
{
    const QMutexLocker locker(&lock_);
    return faults_;
}

QMap<QByteArray, int> Ledger::closedAfter() const
{
    const QMutexLocker locker(&lock_);
    return closed_after_;
}
