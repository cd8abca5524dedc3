#include "tools/host/watch/watch_view.h"

#include <QTimer>

namespace tovik_host::watch {

namespace {

/// A table whose requests are slow is drawn in between.
const int longest_without_drawing = 500;

class DeviceWatch
{
public:
    DeviceWatch(driver::DeviceSetup& setup, const WatchOptions& options, WatchModel& model,
                WatchView& view, bool tells_of_link)
        : setup_(setup),
          options_(options),
          model_(model),
          view_(view),
          tells_of_link_(tells_of_link)
    {}

    void run()
    {
        QObject context;
        QObject::connect(&setup_.context.unix_signals, &terminal::UnixSignals::terminalResized,
                         &context, [this] { draw(); });
        if (options_.seconds > 0) {
            QTimer::singleShot(int(options_.seconds * 1000), &context, [this] {
                time_is_up_ = true;
                setup_.host.stop();
            });
        }
        since_drawing_.start();
        while (!ended()) {
            const terminal::Stopwatch elapsed;
            readRound();
            if (!ended()) {
                terminal::waitUntil(setup_.context.unix_signals,
                                    options_.interval - elapsed.milliseconds(),
                                    [this] { return ended(); });
            }
        }
    }

private:
    bool ended() const
    {
        return time_is_up_ || options_.isReached(model_) ||
               setup_.context.unix_signals.endRequested() || setup_.context.out.broken();
    }

    void draw()
    {
        view_.roundDone(model_, QDateTime::currentDateTime());
        since_drawing_.start();
    }

    /// Once for each loss, however long it lasts.
    void tellOfLink(const driver::Answer& answer)
    {
        const bool is_lost = !answer.link_problem.isEmpty();
        if (is_lost == link_is_lost_)
            return;
        link_is_lost_ = is_lost;
        const QString news =
            is_lost ? u"link lost: %1; trying again until it is back"_s.arg(answer.link_problem)
                    : u"link is back"_s;
        setup_.context.log.take(u"[tovik-host] "_s + news);
        if (tells_of_link_)
            setup_.complainOfLink(news);
    }

    void readRound()
    {
        for (int i = 0; i < model_.items().size(); ++i) {
            const driver::Answer answer = setup_.host.readAgain(model_.items().at(i).item);
            if (ended())
                return;
            tellOfLink(answer);
            if (model_.take(i, answer, QDateTime::currentDateTime()))
                view_.valueChanged(model_.items().at(i));
            if (since_drawing_.hasExpired(longest_without_drawing))
                draw();
        }
        if (model_.endRound(QDateTime::currentDateTime()))
            view_.statusChanged(model_);
        draw();
    }

    driver::DeviceSetup& setup_;
    const WatchOptions& options_;
    WatchModel& model_;
    WatchView& view_;
    QElapsedTimer since_drawing_;
    bool time_is_up_ = false;
    bool tells_of_link_;
    bool link_is_lost_ = false;
};

} // namespace

void watchDevice(driver::DeviceSetup& setup, const WatchOptions& options, WatchModel& model,
                 WatchView& view, bool tells_of_link)
{
    DeviceWatch(setup, options, model, view, tells_of_link).run();
}

} // namespace tovik_host::watch
