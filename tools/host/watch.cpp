#include "tools/host/check/check.h"
#include "tools/host/commands.h"
#include "tools/host/driver/setup.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/watch/watch_view.h"

#include <CLI/CLI.hpp>

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <limits>

namespace tovik_host {

namespace {

const char watch_text[] =
    "Reads all items again and again and shows what changes: a live table on a terminal,\n"
    "a line for every change elsewhere. Ends with Ctrl-C or after --seconds.\n"
    "An item shows a value once the service has delivered one, and says so when no news of it\n"
    "has come for a while. When no value has ever come, the exit code is 1. A link that is lost\n"
    "is opened again; until then the status is offline.\n"
    "\n"
    "Example:\n"
    "  tovik-host watch --config plant.json --seconds 60 --json\n"
    "  tovik-host watch 'Pump.*' --config plant.json --count 1 --strict\n"
    "With a device:\n"
    "  tovik-host watch 4x1 4x10=32Bit-FLOAT --library modbus_drv \\\n"
    "      --link tcp:192.168.1.5:502 --interval 1000";

/// Reads every item once, or until the goal is reached, and tells the view.
/// \param clock a steady one, for what happens in a time
void readRound(driver::DriverSession& session, const QElapsedTimer& clock,
               const watch::WatchGoal& goal, watch::WatchModel& model, watch::WatchView& view)
{
    const QDateTime now = QDateTime::currentDateTime();
    model.takeNumbers(session.numbers(), clock.elapsed());
    for (const int i : model.judgeAges(now))
        view.staleChanged(model, i, now);
    for (int i = 0; i < model.items().size() && !goal.isReached(model); ++i) {
        const config::ItemConfig& item = model.items().at(i).item;
        if (model.take(i, session.read(item.name, item.length), now))
            view.valueChanged(model.items().at(i));
    }
    if (model.endRound(now))
        view.statusChanged(model);
    view.roundDone(model, now);
}

/// Runs rounds until a signal, the end of the time, until nobody reads the output any more, or
/// until a round says that it was the last one.
void watchUntilEnd(terminal::Context& context, double seconds, int interval,
                   const std::function<bool()>& round)
{
    QEventLoop loop;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &loop, [&] {
        if (round() || context.out.broken())
            loop.quit();
    });
    QObject::connect(&context.unix_signals, &terminal::UnixSignals::endAsked, &loop,
                     &QEventLoop::quit);
    QObject::connect(&context.unix_signals, &terminal::UnixSignals::terminalResized, &loop, round);
    if (seconds > 0)
        QTimer::singleShot(int(seconds * 1000), &loop, &QEventLoop::quit);
    timer.start(interval);
    if (!round() && !context.unix_signals.endRequested() && !context.out.broken())
        loop.exec();
}

/// A table whose requests are slow is drawn in between.
const int longest_without_drawing = 500;

/// One watch of a device, from its first round to its end.
class DeviceWatch
{
public:
    DeviceWatch(driver::DeviceSetup& setup, driver::DeviceHost& host, watch::WatchView& view,
                const watch::WatchGoal& goal, bool tells_of_link);

    /// Runs rounds until a signal, the end of the time, or until nobody reads the output any more.
    void run(double seconds, int interval);

    const watch::WatchModel& model() const { return model_; }

private:
    void readRound();
    void tellOfLink(const driver::DeviceAnswer& answer);
    void draw();
    bool ended() const;

    driver::DeviceSetup& setup_;
    driver::DeviceHost& host_;
    watch::WatchView& view_;
    const watch::WatchGoal& goal_;
    watch::WatchModel model_;
    QElapsedTimer since_drawing_;
    bool time_is_up_ = false;
    bool tells_of_link_;
    bool link_is_lost_ = false;
};

DeviceWatch::DeviceWatch(driver::DeviceSetup& setup, driver::DeviceHost& host,
                         watch::WatchView& view, const watch::WatchGoal& goal, bool tells_of_link)
    : setup_(setup),
      host_(host),
      view_(view),
      goal_(goal),
      model_(setup.config.items, QDateTime::currentDateTime()),
      tells_of_link_(tells_of_link)
{}

bool DeviceWatch::ended() const
{
    return time_is_up_ || goal_.isReached(model_) || setup_.context.unix_signals.endRequested() ||
           setup_.context.out.broken();
}

void DeviceWatch::draw()
{
    view_.roundDone(model_, QDateTime::currentDateTime());
    since_drawing_.start();
}

/// Once for each loss, however long it lasts.
void DeviceWatch::tellOfLink(const driver::DeviceAnswer& answer)
{
    const bool is_lost = !answer.link_problem.isEmpty();
    if (is_lost == link_is_lost_)
        return;
    link_is_lost_ = is_lost;
    const QString news = is_lost ? QStringLiteral("link lost: %1; trying again until it is back")
                                       .arg(answer.link_problem)
                                 : QStringLiteral("link is back");
    setup_.context.log.take(QStringLiteral("[tovik-host] ") + news);
    if (tells_of_link_)
        setup_.complainOfLink(news);
}

void DeviceWatch::readRound()
{
    for (int i = 0; i < model_.items().size(); ++i) {
        const driver::DeviceAnswer answer = host_.readAgain(model_.items().at(i).item);
        if (ended())
            return;
        tellOfLink(answer);
        if (model_.take(i, answer.answer, QDateTime::currentDateTime()))
            view_.valueChanged(model_.items().at(i));
        if (since_drawing_.hasExpired(longest_without_drawing))
            draw();
    }
    if (model_.endRound(QDateTime::currentDateTime()))
        view_.statusChanged(model_);
    draw();
}

void DeviceWatch::run(double seconds, int interval)
{
    QObject context;
    QObject::connect(&setup_.context.unix_signals, &terminal::UnixSignals::terminalResized,
                     &context, [this] { draw(); });
    if (seconds > 0) {
        QTimer::singleShot(int(seconds * 1000), &context, [this] {
            time_is_up_ = true;
            host_.stop();
        });
    }
    since_drawing_.start();
    while (!ended()) {
        QElapsedTimer elapsed;
        elapsed.start();
        readRound();
        if (!ended()) {
            terminal::waitUntil(setup_.context.unix_signals, interval - int(elapsed.elapsed()),
                                [this] { return ended(); });
        }
    }
}

struct Watch
{
    config::CommonOptions common;
    QStringList items;
    double seconds = 0; ///< 0: until a signal.
    int stale = 3;      ///< Cycles without news after which a value is stale; 0: never.
    watch::WatchGoal goal;
    int interval = 500; ///< Milliseconds between the rounds of reads.
    double metrics = 0; ///< Seconds between reports of the driver's numbers; 0: none.

    int run() const;
    int runOfService() const;
    int runOfDevice() const;
};

int Watch::run() const
{
    const bool is_traced_to_errors = common.trace && common.trace->isEmpty();
    if (is_traced_to_errors && watch::isWatchedOnTerminal(common) && ::isatty(STDERR_FILENO) != 0) {
        throw terminal::UsageError(
            QStringLiteral("the trace and the table would write over each other: name a file "
                           "with --trace=FILE"));
    }
    if (driver::isForDevice(common))
        return runOfDevice();
    driver::refuseDeviceOptions(common);
    return runOfService();
}

int Watch::runOfService() const
{
    terminal::Context context;
    const driver::ServiceSetup setup(common, context);
    const std::unique_ptr<watch::WatchView> view = watch::makeWatchView(common, context);
    const QDateTime start = QDateTime::currentDateTime();
    const QVector<config::ItemConfig> watched =
        items.isEmpty() ? setup.config.items : setup.chosen(items);
    watch::WatchModel model(watched, start, stale);
    view->start({setup.plugin.path(), setup.plugin.versionText(), setup.shownUrl(),
                 setup.config.service.project},
                start);
    {
        driver::DriverSession session(setup.plugin, setup.config, watched);
        QElapsedTimer clock;
        clock.start();
        QTimer reports;
        QObject::connect(&reports, &QTimer::timeout, &reports, [&] {
            model.takeNumbers(session.numbers(), clock.elapsed());
            view->numbersDue(model, QDateTime::currentDateTime());
        });
        if (metrics > 0) {
            reports.start(int(metrics * 1000));
            if (!session.numbers().isAny())
                context.warn(QStringLiteral("this driver has no metrics"));
        }
        watchUntilEnd(context, seconds, interval, [&] {
            readRound(session, clock, goal, model, *view);
            return goal.isReached(model);
        });
    }
    const int code = watch::endWatch(*view, model, goal, context);
    if (code == terminal::exitRefused && model.valueCount() == 0) {
        if (model.wasConnected())
            check::advise(context, QString(), check::checkCommand(common));
        else
            explainNoConnection(context, setup, common, model.status());
    }
    return code;
}

int Watch::runOfDevice() const
{
    if (items.isEmpty() && common.config.isEmpty()) {
        throw terminal::UsageError(
            QStringLiteral("there is nothing to watch: name addresses, or a file of "
                           "items with --config"));
    }
    terminal::Context context;
    driver::DeviceSetup setup(common, items, context);
    const std::unique_ptr<watch::WatchView> view = watch::makeWatchView(common, context);
    driver::DeviceHost host(setup.plugin, setup.config, context.unix_signals);
    if (!setup.open(host))
        return terminal::exitRefused;
    view->start({setup.plugin.path(), setup.plugin.versionText(), QString(), QString(),
                 driver::linkText(setup.config.link)},
                QDateTime::currentDateTime());
    DeviceWatch device_watch(setup, host, *view, goal,
                             !watch::isWatchedOnTerminal(common) && !common.verbose);
    device_watch.run(seconds, interval);
    return watch::endWatch(*view, device_watch.model(), goal, context);
}

} // namespace

void addWatch(CLI::App& app, Run& run)
{
    const auto options = std::make_shared<Watch>();
    CLI::App* command = app.add_subcommand("watch", "Show items live as the driver serves them");
    command->footer(watch_text);
    addTexts(command, "ITEM", options->items,
             "Names of items, or patterns of them with * ? [] (default: all); of a device without "
             "--config: addresses");
    addCommon(command, options->common);
    addService(command, options->common);
    addSeconds(command, "--seconds", options->seconds, "End after this time", 1000000);
    addWhole(command, "--interval", options->interval, "Time between reads", "MS", 20, 3600000)
        ->capture_default_str();
    addWhole(command, "-C,--count", options->goal.count, "End after so many values", "N", 1,
             std::numeric_limits<int>::max());
    command->add_flag("--strict", options->goal.is_strict,
                      "End with 1 if a value was stale or bad at any time");
    command->add_flag("-j,--json", options->common.json, "One line of JSON for every change");
    markOfService(addWhole(command, "--stale", options->stale,
                           "A value is stale after so many cycles without news; 0: never", "CYCLES",
                           0, 1000000)
                      ->capture_default_str());
    markOfService(addSeconds(command, "--metrics", options->metrics,
                             "Also report cycle time, reads per second, errors and ages so often"));
    addLink(command, options->common.link);
    addRequest(command, options->common);
    markOfDevice(addTimeout(command, options->common.timeout, "Longest wait for the link"));
    command->callback([command, options, &run] {
        complete(command, options->common);
        run = [options] { return options->run(); };
    });
}

} // namespace tovik_host
