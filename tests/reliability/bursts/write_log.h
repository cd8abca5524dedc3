#ifndef TESTS_RELIABILITY_BURSTS_WRITE_LOG_H
#define TESTS_RELIABILITY_BURSTS_WRITE_LOG_H

#include <QByteArray>
#include <QString>

/// What the service's own log says of a burst of writes, each of which carries a text of its own.
struct WriteLog
{
    int arrived = 0;      ///< Different writes that took effect.
    int repeated = 0;     ///< Writes that took effect once more.
    int out_of_order = 0; ///< Writes that took effect after a later one.

    /// The text that write number \a number of a burst carries.
    static QByteArray text(int number);
    /// Reads the log that `tovik-cloud --verbose` has written.
    static WriteLog read(const QString& file);
};

#endif
