#include "tools/host/commands.h"
#include "tools/host/driver/device_host.h"
#include "tools/host/driver/setup.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/unix_signals.h"
#include "tools/host/value/status_text.h"
#include "tools/host/watch/watch_view.h"

#include <QElapsedTimer>
#include <QTimer>

namespace tovik_host {

namespace {

/// A table whose requests are slow is drawn in between.
const int longest_without_drawing = 500;

/// One watch of a device, from its first round to its end.
class DeviceWatch
{
public:
    DeviceWatch(driver::DeviceSetup& setup, driver::DeviceHost& host, watch::WatchView& view,
                bool tells_of_link);

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
    watch::WatchModel model_;
    QElapsedTimer since_drawing_;
    bool time_is_up_ = false;
    bool tells_of_link_;
    bool link_is_lost_ = false;
};

DeviceWatch::DeviceWatch(driver::DeviceSetup& setup, driver::DeviceHost& host,
                         watch::WatchView& view, bool tells_of_link)
    : setup_(setup),
      host_(host),
      view_(view),
      model_(setup.config.items, QDateTime::currentDateTime()),
      tells_of_link_(tells_of_link)
{}

bool DeviceWatch::ended() const
{
    return time_is_up_ || setup_.context.unix_signals.endRequested() || setup_.context.out.broken();
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

} // namespace

int watchDevice(const config::CommonOptions& common, const QStringList& items, double seconds,
                int interval)
{
    if (items.isEmpty() && common.config.isEmpty()) {
        throw terminal::UsageError(
            QStringLiteral("there is nothing to watch: name addresses, or a file of "
                           "items with --config"));
    }
    terminal::Context context;
    driver::DeviceSetup setup(common, items, context);
    const std::unique_ptr<watch::WatchView> view = watch::makeWatchView(common, context);
    bool has_had_values = false;
    {
        driver::DeviceHost host(setup.plugin, setup.config, context.unix_signals);
        const QString link_problem = host.open();
        if (!link_problem.isEmpty()) {
            setup.complainOfLink(link_problem);
            return terminal::exitRefused;
        }
        view->start({setup.plugin.path(), setup.plugin.versionText(), QString(), QString(),
                     driver::linkText(setup.config.link)},
                    QDateTime::currentDateTime());
        DeviceWatch device_watch(setup, host, *view,
                                 !watch::isWatchedOnTerminal(common) && !common.verbose);
        device_watch.run(seconds, interval);
        has_had_values = device_watch.model().hasHadValues();
    }
    return watch::endWatch(*view, has_had_values, context);
}

} // namespace tovik_host
