#include "tools/host/watch.h"

#include "tools/host/driver/workplace.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/watch/make_watch_view.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <memory>

namespace tovik_host {

namespace {

/// Reads every item once and tells the view.
/// \param clock a steady one, for what happens in a time
void readRound(driver::DriverSession& session, const QElapsedTimer& clock, watch::WatchModel& model,
               watch::WatchView& view)
{
    const QDateTime now = QDateTime::currentDateTime();
    for (int i = 0; i < model.items().size(); ++i) {
        const config::ItemConfig& item = model.items().at(i).item;
        if (model.take(i, session.read(item.name, item.length), now))
            view.valueChanged(model.items().at(i));
    }
    if (model.endRound(now))
        view.statusChanged(model);
    model.takeNumbers(session.numbers(), clock.elapsed());
    view.roundDone(model, now);
}

/// Runs rounds until a signal, the end of the time, or until nobody reads the output any more.
void watchUntilEnd(driver::Workplace& place, const config::WatchOptions& options,
                   const std::function<void()>& round)
{
    QEventLoop loop;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &loop, [&] {
        round();
        if (place.out.broken())
            loop.quit();
    });
    QObject::connect(&place.unix_signals, &terminal::UnixSignals::endAsked, &loop,
                     &QEventLoop::quit);
    QObject::connect(&place.unix_signals, &terminal::UnixSignals::terminalResized, &loop, round);
    if (options.seconds > 0)
        QTimer::singleShot(int(options.seconds * 1000), &loop, &QEventLoop::quit);
    timer.start(options.interval);
    round();
    if (!place.unix_signals.endRequested() && !place.out.broken())
        loop.exec();
}

} // namespace

int runWatch(const config::CommonOptions& common, const config::WatchOptions& options)
{
    driver::Workplace place(common);
    const std::unique_ptr<watch::WatchView> view =
        watch::makeWatchView(common, place.out, place.log, place.unix_signals);
    const QDateTime start = QDateTime::currentDateTime();
    watch::WatchModel model(place.config.items, start);
    view->start({place.plugin.path(), place.plugin.versionText(), place.shownUrl(),
                 place.config.service.project},
                start);
    {
        driver::DriverSession session(place.plugin, place.config, place.config.items);
        QElapsedTimer clock;
        clock.start();
        QTimer metrics;
        QObject::connect(&metrics, &QTimer::timeout, &metrics, [&] {
            model.takeNumbers(session.numbers(), clock.elapsed());
            view->numbersDue(model, QDateTime::currentDateTime());
        });
        if (options.metrics > 0) {
            metrics.start(int(options.metrics * 1000));
            if (!session.numbers().isAny())
                place.err.line(QStringLiteral("tovik-host: warning: this driver has no metrics"));
        }
        watchUntilEnd(place, options, [&] { readRound(session, clock, model, *view); });
    }
    view->end(QDateTime::currentDateTime());
    return terminal::exitDone;
}

} // namespace tovik_host
