#include "tools/host/watch/watch_view.h"

#include <QEventLoop>
#include <QTimer>

namespace tovik_host::watch {

namespace {

/// Seconds without a connection after which the cause is looked for.
const int patience = 2;
/// The same while the driver reports no error: a login takes its time.
const int patience_without_error = 5;

class ServiceWatch
{
public:
    ServiceWatch(terminal::Context& context, const driver::ServiceSetup& setup,
                 const WatchOptions& options, WatchModel& model, WatchView& view,
                 const FindCause& find_cause)
        : context_(context),
          setup_(setup),
          options_(options),
          model_(model),
          view_(view),
          find_cause_(find_cause)
    {}

    void run()
    {
        QVector<config::ItemConfig> items;
        for (const ItemState& state : model_.items())
            items << state.item;
        driver::DriverSession session(setup_.plugin, setup_.config, items);
        clock_.start();
        QEventLoop loop;
        QTimer reports;
        QObject::connect(&reports, &QTimer::timeout, &loop, [&] {
            model_.takeNumbers(session.numbers(), clock_.elapsed());
            view_.numbersDue(model_, QDateTime::currentDateTime());
        });
        if (options_.metrics > 0) {
            reports.start(int(options_.metrics * 1000));
            if (!session.numbers().isAny())
                context_.warn(u"this driver has no metrics"_s);
        }
        QTimer rounds;
        QObject::connect(&rounds, &QTimer::timeout, &loop, [&] {
            readRound(session);
            if (isOver())
                loop.quit();
            else if (wantsCause()) // not in here: a timer waits until its own slot has returned
                QTimer::singleShot(0, &loop, [this] { lookForCause(); });
        });
        QObject::connect(&context_.unix_signals, &terminal::UnixSignals::endAsked, &loop,
                         &QEventLoop::quit);
        QObject::connect(&context_.unix_signals, &terminal::UnixSignals::terminalResized, &loop,
                         [&] { readRound(session); });
        if (options_.seconds > 0)
            QTimer::singleShot(int(options_.seconds * 1000), &loop, &QEventLoop::quit);
        rounds.start(options_.interval);
        readRound(session);
        if (!isOver())
            loop.exec();
    }

private:
    void readRound(driver::DriverSession& session)
    {
        const QDateTime now = QDateTime::currentDateTime();
        model_.takeNumbers(session.numbers(), clock_.elapsed());
        for (const int i : model_.judgeAges(now))
            view_.staleChanged(model_, i, now);
        for (int i = 0; i < model_.items().size() && !options_.isReached(model_); ++i) {
            const config::ItemConfig& item = model_.items().at(i).item;
            if (model_.take(i, session.read(item.name, item.length), now))
                view_.valueChanged(model_.items().at(i));
        }
        if (model_.endRound(now))
            view_.statusChanged(model_);
        view_.roundDone(model_, now);
    }

    bool isOver() const
    {
        return options_.isReached(model_) || context_.out.broken() ||
               context_.unix_signals.endRequested();
    }

    /// Once for each time without a connection.
    bool wantsCause() const
    {
        const QDateTime since = model_.statusSince();
        const int wait = model_.status() == 0 ? patience_without_error : patience;
        return !model_.isConnected() && model_.cycleEnd() < 0 && since != looked_at_ &&
               since.secsTo(QDateTime::currentDateTime()) >= wait;
    }

    void lookForCause()
    {
        if (!wantsCause())
            return;
        looked_at_ = model_.statusSince();
        const QString cause = find_cause_(model_.status());
        if (cause.isEmpty() || model_.statusSince() != looked_at_ || isOver())
            return;
        model_.setCause(cause);
        view_.causeFound(model_, QDateTime::currentDateTime());
    }

    terminal::Context& context_;
    const driver::ServiceSetup& setup_;
    const WatchOptions& options_;
    WatchModel& model_;
    WatchView& view_;
    const FindCause& find_cause_;
    QElapsedTimer clock_; ///< A steady one, for what happens in a time.
    QDateTime looked_at_; ///< Since when there was no connection when the cause was looked for.
};

} // namespace

void watchService(terminal::Context& context, const driver::ServiceSetup& setup,
                  const WatchOptions& options, WatchModel& model, WatchView& view,
                  const FindCause& find_cause)
{
    ServiceWatch(context, setup, options, model, view, find_cause).run();
}

} // namespace tovik_host::watch
