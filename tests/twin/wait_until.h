#ifndef TESTS_TWIN_WAIT_UNTIL_H
#define TESTS_TWIN_WAIT_UNTIL_H

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <QVariant>

/// Handles events until \a is_reached, for a minute at most.
template <typename Condition>
bool waitUntil(Condition is_reached)
{
    const int patience = 60000; // ms
    const int interval = 20;    // ms
    QElapsedTimer time;
    time.start();
    while (!is_reached() && time.elapsed() < patience) {
        QEventLoop loop;
        QTimer::singleShot(interval, &loop, SLOT(quit()));
        loop.exec();
    }
    return is_reached();
}

/// Whether the driver has a value of every item that is younger than \a milliseconds.
inline bool hasValues(const QObject& driver, qint64 milliseconds)
{
    const QVariantList ages = driver.property("item_ages").toList();
    for (int i = 0; i < ages.size(); ++i) {
        if (ages.at(i).toInt() < 0 || ages.at(i).toInt() > milliseconds)
            return false;
    }
    return !ages.isEmpty();
}

#endif
