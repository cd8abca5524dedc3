#ifndef TESTS_RELIABILITY_STRESS_STRESS_RUN_H
#define TESTS_RELIABILITY_STRESS_STRESS_RUN_H

#include "tests/reliability/stress/ledger.h"
#include "tests/reliability/stress/settle.h"
#include "tests/reliability/stress/stress_driver.h"
#include "tests/reliability/stress/stress_service.h"

#include <QElapsedTimer>

#include <memory>
#include <random>
#include <vector>

/// What a run is to do.
struct StressSettings
{
    qint64 milliseconds = 60000;
    quint32 seed = 1;
    int drivers = 4;
    int items = 40;
    /// Of the host, for all drivers together, in a second.
    int reads = 4000;
    int writes = 100;
    /// Of one driver; the next one waits until the service has seen some.
    int outstanding = 50;
    int faults_per_mille = 5;
    qint64 longest_close = 1000; ///< Closing may take so many milliseconds.
    qint64 progress = 10000;     ///< A line every so many milliseconds.
    qint64 round = 10000;        ///< All drivers go, and come again, every so many.
};

/// Drivers come, are used and go at moments left to chance, until the time is up.
///
/// In rounds: at the end of each all drivers go, and the process must hold no more threads and
/// descriptors than after the first. Every third round has one driver at a time, and looks after
/// each.
class StressRun
{
public:
    explicit StressRun(const StressSettings& settings);
    ~StressRun();

    /// \return whether there was nothing to find.
    bool run();

private:
    void round(int drivers, qint64 end);
    bool isWarm() const;
    void tick(qint64 elapsed);
    void replace(std::unique_ptr<StressDriver>* driver);
    void close(std::unique_ptr<StressDriver>* driver);
    void checkLevel(const char* when);
    void printProgress(const char* prefix);
    void printSummary();

    StressSettings settings_;
    std::minstd_rand random_;
    Ledger ledger_;
    std::unique_ptr<StressService> http_;
    std::unique_ptr<StressService> https_;
    std::vector<std::unique_ptr<StressDriver>> drivers_;
    QElapsedTimer clock_;
    ProcessFacts limit_;
    ProcessFacts highest_;
    bool has_limit_ = false; ///< From the first round.
    bool is_alone_ = false;
    int created_ = 0;
    int closed_ = 0;
    int levels_checked_ = 0;
    qint64 reads_ = 0;
    qint64 longest_close_ = 0;
    qint64 reads_due_ = 0;
    qint64 writes_due_ = 0;
    qint64 next_progress_ = 0;
};

#endif
