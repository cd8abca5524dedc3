#ifndef TESTS_RELIABILITY_SOAK_SOAK_RUN_H
#define TESTS_RELIABILITY_SOAK_SOAK_RUN_H

#include "tests/reliability/soak/fault_plan.h"
#include "tests/reliability/soak/judge.h"
#include "tests/support/cloud_process.h"
#include "tests/system/plugin.h"

#include <QElapsedTimer>
#include <QObject>
#include <QSet>
#include <QTemporaryDir>
#include <QTimer>

#include <atomic>
#include <cstdio>
#include <memory>

/// How a soak is run.
struct SoakPlan
{
    double seconds = 600;
    unsigned seed = 1;
    int items = 200;
    double pace = 1;     ///< Faults come, and go, so many times faster.
    bool is_day = false; ///< It is a day, with a night; tokens expire by themselves.
    QString output;      ///< Samples and faults go there as lines of JSON; nowhere if empty.
};

/// What was done to the plug-in, besides being looked at.
struct SoakLoad
{
    qint64 host_reads = 0;
    qint64 unanswered = 0; ///< Host requests that were not answered once and at once.
    int writes = 0;
    int faults = 0;
    double longest_read_ms = 0;
    double close_ms = 0;
    int cycles = 0;
    uint values = 0;
    int longest_cycle_ms = 0;
    QSet<int> statuses;
};

/// The number of the client's timers, from whoever sees their events.
extern std::atomic<int> soak_timer_count;

/// A host that polls through the plug-in, while the service goes wrong now and then.
class SoakRun : public QObject
{
    Q_OBJECT

public:
    explicit SoakRun(const SoakPlan& plan);
    ~SoakRun();

    /// Runs; false, with a message on stderr, when it could not.
    bool run();

    const std::vector<SoakSample>& samples() const { return samples_; }
    const SoakLoad& load() const { return load_; }

private:
    bool startService();
    void startHost();
    void readSome();
    void writeSome();
    void sample();
    void nextFault();
    void beginFault(const PlannedFault& fault);
    void endFault(const PlannedFault& fault);
    void every(int milliseconds, void (SoakRun::*work)());
    void tell(const nlohmann::json& line);
    bool fail(const char* what);

    SoakPlan plan_;
    FaultPlan faults_;
    QTemporaryDir folder_;
    std::unique_ptr<CloudProcess> cloud_;
    std::unique_ptr<PluginDriver> host_;
    QElapsedTimer clock_;
    std::vector<SoakSample> samples_;
    SoakLoad load_;
    std::vector<std::string> names_;
    int next_read_ = 0;
    int next_write_ = 0;
    int write_turns_ = 0;
    int control_port_ = 0;
    bool failed_ = false;
    std::FILE* output_ = nullptr;
};

#endif
