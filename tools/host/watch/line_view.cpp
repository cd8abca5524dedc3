#include "tools/host/watch/views.h"

#include "tools/host/terminal/text_width.h"
#include "tools/host/value/status_text.h"

namespace tovik_host::watch {

namespace {

/// Which value is the oldest; one that has never come is older than all others.
QString oldestText(const WatchModel& model)
{
    int oldest = -1;
    for (int i = 0; i < model.items().size(); ++i) {
        if (!model.ageOf(i))
            return QStringLiteral("no value yet of %1").arg(model.items().at(i).item.name);
        if (oldest < 0 || *model.ageOf(i) > *model.ageOf(oldest))
            oldest = i;
    }
    if (oldest < 0)
        return QStringLiteral("no items");
    return QStringLiteral("oldest value: %1, %2 s")
        .arg(model.items().at(oldest).item.name)
        .arg(*model.ageOf(oldest) / 1000.0, 0, 'f', 1);
}

} // namespace

void LineView::start(const WatchSubject& subject, const QDateTime& now)
{
    const QString what = subject.link.isEmpty()
                             ? QStringLiteral("project %1 at %2").arg(subject.project, subject.url)
                             : subject.link;
    line(now, QStringLiteral("driver %1 watches %2").arg(subject.driver_version, what));
}

void LineView::valueChanged(const ItemState& state)
{
    if (!state.answer.arrived) {
        line(state.changed_at,
             QStringLiteral("%1: the driver does not answer").arg(state.item.name));
        return;
    }
    if (state.is_waited_for) {
        QString text =
            QStringLiteral("%1 = %2  no value yet").arg(state.item.name, value::noValue());
        if (state.answer.status != 0)
            text += QStringLiteral("  ") + value::statusCode(state.answer.status);
        line(state.changed_at, text);
        return;
    }
    if (!state.answer.has_value) {
        line(state.changed_at, QStringLiteral("%1: no value  %2")
                                   .arg(state.item.name, value::statusCode(state.answer.status)));
        return;
    }
    const QString value =
        state.value.value_or(QStringLiteral("(no %1)").arg(QLatin1String(state.item.type->name)));
    line(state.changed_at, QStringLiteral("%1 = %2  [%3]  %4")
                               .arg(state.item.name, value, value::hexText(state.answer.bytes),
                                    value::statusWord(state.answer.status)));
}

void LineView::staleChanged(const WatchModel& model, int index, const QDateTime& now)
{
    const ItemState& state = model.items().at(index);
    line(now, state.is_stale ? QStringLiteral("%1: stale, no news for %2 s")
                                   .arg(state.item.name)
                                   .arg(model.ageOf(index).value_or(0) / 1000.0, 0, 'f', 1)
                             : QStringLiteral("%1: no longer stale").arg(state.item.name));
}

void LineView::statusChanged(const WatchModel& model)
{
    line(model.statusSince(), QStringLiteral("status: ") + model.statusText());
}

void LineView::causeFound(const WatchModel& model, const QDateTime& now)
{
    line(now, QStringLiteral("cause: ") + model.cause());
}

void LineView::numbersDue(const WatchModel& model, const QDateTime& now)
{
    const QString numbers = value::numbersText(model.numbers(), model.readsPerSecond(), now);
    if (numbers.isEmpty())
        return;
    QString text = QStringLiteral("metrics: ") + numbers;
    if (model.numbers().tells_ages)
        text += QStringLiteral(", ") + oldestText(model);
    line(now, text);
}

void LineView::end(const QDateTime& now)
{
    line(now, QStringLiteral("end"));
}

void LineView::line(const QDateTime& time, const QString& text)
{
    output_.line(time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz  ")) +
                 terminal::printable(text));
}

} // namespace tovik_host::watch
