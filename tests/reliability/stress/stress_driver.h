#ifndef TESTS_RELIABILITY_STRESS_STRESS_DRIVER_H
#define TESTS_RELIABILITY_STRESS_STRESS_DRIVER_H

#include "tests/reliability/stress/stamped_value.h"
#include "tests/system/plugin.h"

#include <QElapsedTimer>

#include <random>

class Ledger;

/// One driver with its link, and the host's part: reads and writes, and looks at every answer.
class StressDriver
{
public:
    /// Connects to the service at \a url; an error handling of random type.
    /// \param number its name for ledger and service, from 1 and never used again
    StressDriver(int number, const QString& url, int items, std::minstd_rand* random,
                 Ledger* ledger);
    /// Closes it, if that has not been done.
    ~StressDriver();

    /// Reads some item.
    void read();
    /// Writes to some item.
    void write();
    /// Closes and deletes the driver. Requests of the host on a closed driver are answered, too.
    /// \return how long closing took, in milliseconds
    qint64 close();

    int number() const { return number_; }
    /// Whether it has lived as long as it was to live, which was left to chance.
    bool isDue() const;

private:
    int someItem();

    int number_;
    int items_;
    qint64 lifetime_;
    std::minstd_rand* random_;
    Ledger* ledger_;
    QElapsedTimer age_;
    PluginDriver host_;
};

#endif
