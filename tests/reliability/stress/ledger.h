#ifndef TESTS_RELIABILITY_STRESS_LEDGER_H
#define TESTS_RELIABILITY_STRESS_LEDGER_H

#include <QByteArray>
#include <QHash>
#include <QMap>
#include <QMutex>
#include <QSet>
#include <QStringList>

/// What host and service tell each other about the drivers between them, from two threads: which
/// writes are on their way, what a driver asked for last, and all that should not have been.
class Ledger
{
public:
    /// One more value: numbers from 1.
    quint32 nextSequence();
    /// The number of the latest value.
    quint32 lastSequence() const;

    /// The host has given a write to \a driver. \a key says which one.
    void sent(int driver, const QByteArray& key);
    /// The service has received it.
    void arrived(const QByteArray& key);
    /// Writes of \a driver that the service has not seen yet.
    int outstanding(int driver) const;
    /// \a driver is gone, and what was outstanding with it. \return the last request of it that the
    /// service has seen.
    QByteArray closed(int driver);

    /// The service has received a request of \a driver.
    void asked(int driver, const QByteArray& operation);
    /// The service has let a request fail.
    void failed();

    /// Something that must not be. It is printed at once, unless there have been many already.
    void finding(const QString& text);

    /// \name Sums
    /// @{
    int findings() const;
    qint64 writesSent() const;
    qint64 writesArrived() const;
    qint64 requests() const;
    qint64 faults() const;
    /// Closed drivers by the last request that the service had seen of them.
    QMap<QByteArray, int> closedAfter() const;
    /// @}

private:
    mutable QMutex lock_;
    quint32 sequence_ = 0;
    int findings_ = 0;
    qint64 writes_sent_ = 0;
    qint64 writes_arrived_ = 0;
    qint64 requests_ = 0;
    qint64 faults_ = 0;
    QHash<QByteArray, int> driver_of_write_;
    QHash<int, int> outstanding_;
    QHash<int, QByteArray> asked_last_;
    QMap<QByteArray, int> closed_after_;
};

#endif
