#include "tools/host/watch/service_watch.h"

#include <QEventLoop>
#include <QTimer>

namespace tovik_host::watch {

namespace {

/// Seconds without a connection after which the cause is looked for.
const int patience = 2;
/// The same while the driver reports no error: a login takes its time.
const int patience_without_error = 5;

} // namespace

void ServiceWatch::readRound(driver::DriverSession& session)
{
    const QDateTime now = QDateTime::currentDateTime();
    model_.takeNumbers(session.numbers(), clock_.elapsed());
    for (const int i : model_.judgeAges(now))
        view_.staleChanged(model_, i, now);
    for (int i = 0; i < model_.items().size() && !goal_.isReached(model_); ++i) {
        const config::ItemConfig& item = model_.items().at(i).item;
        if (model_.take(i, session.read(item.name, item.length), now))
            view_.valueChanged(model_.items().at(i));
    }
    if (model_.endRound(now))
        view_.statusChanged(model_);
    view_.roundDone(model_, now);
}

bool ServiceWatch::isOver() const
{
    return goal_.isReached(model_) || context_.out.broken() || context_.unix_signals.endRequested();
}

/// Once for each time without a connection.
bool ServiceWatch::wantsCause() const
{
    const QDateTime since = model_.statusSince();
    const int wait = model_.status() == 0 ? patience_without_error : patience;
    return !model_.isConnected() && model_.cycleEnd() < 0 && since != looked_at_ &&
           since.secsTo(QDateTime::currentDateTime()) >= wait;
}

void ServiceWatch::lookForCause()
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

void ServiceWatch::run(double seconds, int interval, double metrics)
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
    if (metrics > 0) {
        reports.start(int(metrics * 1000));
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
    if (seconds > 0)
        QTimer::singleShot(int(seconds * 1000), &loop, &QEventLoop::quit);
    rounds.start(interval);
    readRound(session);
    if (!isOver())
        loop.exec();
}

} // namespace tovik_host::watch
