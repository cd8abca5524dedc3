#include "tests/reliability/stress/stress_run.h"

#include <QCoreApplication>
#include <QThread>

#include <algorithm>
#include <cstdio>

namespace {

const int pause = 2; // ms between two looks at the event loop
const int rounds_to_a_lonely_one = 3;
const qint64 per_second = 1000;
const qint64 warming_patience = 60000; // ms; with many faults no value may ever come
/// What is overdue is not made up for at once when the machine was busy elsewhere.
const qint64 longest_tick = 50;

} // namespace

StressRun::StressRun(const StressSettings& settings)
    : settings_(settings),
      random_(settings.seed),
      next_progress_(settings.progress)
{
    StressService::Settings service;
    service.seed = settings.seed + 1;
    service.items = settings.items;
    service.faults_per_mille = settings.faults_per_mille;
    http_ = std::make_unique<StressService>(service, &ledger_);
    service.is_tls = true;
    https_ = std::make_unique<StressService>(service, &ledger_);
}

StressRun::~StressRun() {}

bool StressRun::run()
{
    clock_.start();
    // A short one first: Qt starts what it never ends.
    const qint64 first_end = settings_.round / 5;
    round(settings_.drivers, first_end);
    settings_.milliseconds += std::max(qint64(0), clock_.elapsed() - first_end);
    for (int number = 1; clock_.elapsed() < settings_.milliseconds; ++number) {
        is_alone_ = number % rounds_to_a_lonely_one == 0;
        round(is_alone_ ? 1 : settings_.drivers,
              std::min(settings_.milliseconds, clock_.elapsed() + settings_.round));
    }
    printSummary();
    return ledger_.findings() == 0;
}

void StressRun::round(int drivers, qint64 end)
{
    drivers_.resize(std::size_t(drivers));
    qint64 last = clock_.elapsed();
    while (last < end || !isWarm()) {
        for (std::unique_ptr<StressDriver>& driver : drivers_)
            replace(&driver);
        const qint64 now = clock_.elapsed();
        tick(std::min(now - last, longest_tick));
        last = now;
        QCoreApplication::processEvents();
        const ProcessFacts facts = processFacts();
        highest_.threads = std::max(highest_.threads, facts.threads);
        highest_.descriptors = std::max(highest_.descriptors, facts.descriptors);
        QThread::msleep(pause);
        if (clock_.elapsed() >= next_progress_) {
            printProgress("");
            next_progress_ += settings_.progress;
        }
    }
    for (std::unique_ptr<StressDriver>& driver : drivers_)
        close(&driver);
    checkLevel("after a round");
}

/// Whether the first round has used all that the later ones use, or has waited long enough for it.
bool StressRun::isWarm() const
{
    return has_limit_ || (http_->hasGivenValue() && https_->hasGivenValue()) ||
           clock_.elapsed() > warming_patience;
}

/// The requests of the host that \a elapsed milliseconds ask for.
void StressRun::tick(qint64 elapsed)
{
    const auto some = [this]() -> StressDriver& {
        return *drivers_[std::size_t(random_()) % drivers_.size()];
    };
    reads_due_ += settings_.reads * elapsed;
    for (; reads_due_ >= per_second; reads_due_ -= per_second) {
        some().read();
        ++reads_;
    }
    writes_due_ += settings_.writes * elapsed;
    for (; writes_due_ >= per_second; writes_due_ -= per_second) {
        StressDriver& driver = some();
        if (ledger_.outstanding(driver.number()) < settings_.outstanding)
            driver.write();
    }
}

void StressRun::replace(std::unique_ptr<StressDriver>* driver)
{
    if (*driver && !(*driver)->isDue())
        return;
    close(driver);
    if (is_alone_)
        checkLevel("after a driver");
    ++created_;
    const QString url = created_ % 2 ? http_->url() : https_->url();
    *driver = std::make_unique<StressDriver>(created_, url, settings_.items, &random_, &ledger_);
}

void StressRun::close(std::unique_ptr<StressDriver>* driver)
{
    if (!*driver)
        return;
    const qint64 taken = (*driver)->close();
    driver->reset();
    ++closed_;
    longest_close_ = std::max(longest_close_, taken);
    if (taken > settings_.longest_close)
        ledger_.finding(QString::fromLatin1("closing took %1 ms").arg(taken));
}

void StressRun::checkLevel(const char* when)
{
    if (!has_limit_) {
        limit_ = settle();
        has_limit_ = true;
        return;
    }
    ++levels_checked_;
    const ProcessFacts level = settleWithin(limit_);
    if (!isWithin(level, limit_))
        ledger_.finding(QString::fromLatin1("%1 threads and %2 descriptors %3, not %4 and %5")
                            .arg(level.threads)
                            .arg(level.descriptors)
                            .arg(QString::fromLatin1(when))
                            .arg(limit_.threads)
                            .arg(limit_.descriptors));
}

void StressRun::printProgress(const char* prefix)
{
    std::printf(
        "%s%5.1f min: %lld reads, %lld writes (%lld arrived), %lld requests, %lld failed on "
        "purpose, %d drivers, longest close %lld ms, %.0f MiB, findings: %d\n",
        prefix, double(clock_.elapsed()) / 60000, static_cast<long long>(reads_),
        static_cast<long long>(ledger_.writesSent()),
        static_cast<long long>(ledger_.writesArrived()), static_cast<long long>(ledger_.requests()),
        static_cast<long long>(ledger_.faults()), created_, static_cast<long long>(longest_close_),
        double(processFacts().resident_kib) / 1024, ledger_.findings());
    std::fflush(stdout);
}

void StressRun::printSummary()
{
    printProgress("Done. ");
    std::printf("Drivers closed: %d; by the last request that the service had seen of them:",
                closed_);
    const QMap<QByteArray, int> closed = ledger_.closedAfter();
    for (auto it = closed.begin(); it != closed.end(); ++it)
        std::printf(" %s %d", it.key().isEmpty() ? "none" : it.key().constData(), it.value());
    std::printf("\nThreads and descriptors: at most %d and %d; without a driver never above %d and "
                "%d, looked at %d times\n",
                highest_.threads, highest_.descriptors, limit_.threads, limit_.descriptors,
                levels_checked_);
}
