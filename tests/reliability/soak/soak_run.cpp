#include "tests/reliability/soak/soak_run.h"

#include "tests/reliability/plant_of.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <algorithm>
#include <csignal>

using nlohmann::json;

std::atomic<int> soak_timer_count{0};

namespace {

const int read_interval = 10;
const int reads_at_once = 20;
const int write_interval = 500;
const int sample_interval = 1000;
/// A short run on a busy machine goes on until there has been a whole cycle, for so long at most.
const int cycle_patience = 60000;
/// Every so often the host writes many values at once.
const int turns_between_bursts = 60;
const int burst_size = 50;
/// Seconds that tokens are good for on a day: less than most of the time between two faults.
const int token_lifetime = 120;
/// On a day the host does everything so many times less often by its clock: no more in a second of
/// anybody else's than at other times, which is what a computer can carry.
const int rest_of_day = 24;

} // namespace

SoakRun::SoakRun(const SoakPlan& plan)
    : plan_(plan),
      faults_(plan.seed, plan.pace, plan.is_day ? plan.seconds : 0)
{
    // What the run itself remembers must not look like a leak.
    samples_.reserve(std::size_t(plan.seconds) + 60);
    for (int i = 0; i < plan.items; ++i)
        names_.push_back("item-" + std::to_string(i));
}

SoakRun::~SoakRun()
{
    if (output_)
        std::fclose(output_);
}

bool SoakRun::fail(const char* what)
{
    std::fprintf(stderr, "soak: %s\n", what);
    failed_ = true;
    return false;
}

bool SoakRun::run()
{
    if (!plan_.output.isEmpty()) {
        output_ = std::fopen(plan_.output.toLocal8Bit().constData(), "w");
        if (!output_)
            return fail("the output file cannot be written");
    }
    if (!writePlantOf(plan_.items, folder_.filePath(QStringLiteral("plant.json"))))
        return fail("the project file cannot be written");
    if (!startService())
        return fail("the service does not start");
    startHost();
    clock_.start();
    const int rest = plan_.is_day ? rest_of_day : 1;
    every(read_interval * rest, &SoakRun::readSome);
    every(write_interval * rest, &SoakRun::writeSome);
    every(sample_interval, &SoakRun::sample);
    nextFault();
    QEventLoop loop;
    const qint64 end = qint64(1000 * plan_.seconds);
    QTimer watch;
    connect(&watch, &QTimer::timeout, &loop, [this, &loop, end] {
        const bool has_polled = host_->driver->property("cycle_count").toInt() > 0;
        if (failed_ || clock_.elapsed() >= (has_polled ? end : end + cycle_patience))
            loop.quit();
    });
    watch.start(100);
    loop.exec();
    load_.cycles = host_->driver->property("cycle_count").toInt();
    load_.values = host_->driver->property("read_count").toUInt();
    load_.longest_cycle_ms = host_->driver->property("longest_cycle_milliseconds").toInt();
    QElapsedTimer closing;
    closing.start();
    host_.reset();
    load_.close_ms = double(closing.nsecsElapsed()) / 1e6;
    return !failed_;
}

/// The first start takes free ports; a service that comes back has them again.
bool SoakRun::startService()
{
    const int port = cloud_ ? cloud_->port() : 0;
    control_port_ = cloud_ ? cloud_->controlPort() : 0;
    cloud_.reset(new CloudProcess);
    QStringList options{QStringLiteral("--log"),          QStringLiteral("/dev/null"),
                        QStringLiteral("--port"),         QString::number(port),
                        QStringLiteral("--control-port"), QString::number(control_port_)};
    if (plan_.is_day)
        options << QStringLiteral("--token-lifetime") << QString::number(token_lifetime);
    return cloud_->startProject(folder_.filePath(QStringLiteral("plant.json")), options);
}

void SoakRun::startHost()
{
    host_.reset(new PluginDriver);
    host_->use(*cloud_);
    for (int i = 0; i < plan_.items; ++i)
        host_->serve(names_[std::size_t(i)].c_str(), names_[std::size_t(i)].c_str(),
                     plantTypeOf(i));
    HostSide::setErrorHandling(&host_->link, 2, 1, false, false);
    host_->start();
}

void SoakRun::every(int milliseconds, void (SoakRun::*work)())
{
    QTimer* const timer = new QTimer(this);
    timer->setTimerType(Qt::PreciseTimer);
    connect(timer, &QTimer::timeout, this, [this, work] {
        if (host_)
            (this->*work)();
    });
    timer->start(milliseconds);
}

void SoakRun::readSome()
{
    for (int i = 0; i < reads_at_once; ++i) {
        next_read_ = (next_read_ + 1) % plan_.items;
        QElapsedTimer timer;
        timer.start();
        const DriverAnswer answer = host_->read(names_[std::size_t(next_read_)].c_str());
        load_.longest_read_ms = std::max(load_.longest_read_ms, double(timer.nsecsElapsed()) / 1e6);
        ++load_.host_reads;
        load_.unanswered += answer.status == -1 ? 1 : 0;
        load_.statuses.insert(answer.status);
    }
}

void SoakRun::writeSome()
{
    const int count = ++write_turns_ % turns_between_bursts == 0 ? burst_size : 1;
    for (int written = 0; written < count; next_write_ = (next_write_ + 1) % plan_.items) {
        if (!isPlantItemWritable(next_write_))
            continue;
        const char bytes[2] = {char(load_.writes), char((load_.writes >> 8) & 0x7F)};
        const DriverAnswer answer =
            host_->write(names_[std::size_t(next_write_)].c_str(), QByteArray(bytes, 2));
        load_.unanswered += answer.status == -1 ? 1 : 0;
        ++load_.writes;
        ++written;
    }
}

void SoakRun::sample()
{
    SoakSample now;
    now.seconds = double(clock_.elapsed()) / 1000;
    now.facts = processFacts();
    now.is_polling = host_->driver->property("connected").toBool();
    // Timers before reconnects: a connection between the two only makes room for one more.
    now.timers = soak_timer_count;
    now.reconnects = host_->driver->property("reconnect_count").toInt();
    samples_.push_back(now);
    tell({{"t", now.seconds},
          {"resident_kib", now.facts.resident_kib},
          {"heap_kib", now.facts.heap_kib},
          {"descriptors", now.facts.descriptors},
          {"threads", now.facts.threads},
          {"timers", now.timers},
          {"reconnects", now.reconnects},
          {"cycle_ms", host_->driver->property("cycle_milliseconds").toInt()},
          {"status", host_->read(names_[0].c_str()).status}});
}

void SoakRun::nextFault()
{
    const PlannedFault fault = faults_.next();
    QTimer::singleShot(int(1000 * fault.pause), this, [this, fault] { beginFault(fault); });
}

void SoakRun::beginFault(const PlannedFault& fault)
{
    if (!host_)
        return;
    ++load_.faults;
    tell({{"t", double(clock_.elapsed()) / 1000}, {"fault", fault.name}, {"s", fault.length}});
    if (fault.restarts)
        cloud_->stop(SIGTERM);
    else if (fault.expires)
        cloud_->control("POST", "/tokens/expire");
    else if (cloud_->addFault(fault.spec) == 0)
        fail("the service does not take a fault");
    QTimer::singleShot(int(1000 * fault.length), this, [this, fault] { endFault(fault); });
}

void SoakRun::endFault(const PlannedFault& fault)
{
    if (!host_)
        return;
    if (!fault.restarts)
        cloud_->control("DELETE", "/faults");
    else if (!startService())
        fail("the service does not come back");
    nextFault();
}

void SoakRun::tell(const json& line)
{
    if (!output_)
        return;
    std::fprintf(output_, "%s\n", line.dump().c_str());
    std::fflush(output_);
}
