#include "tools/host/line_view.h"

#include "tools/host/status_text.h"
#include "tools/host/text_width.h"

namespace tovik_host {

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
    if (!state.answer.has_value) {
        line(state.changed_at, QStringLiteral("%1: no value  %2")
                                   .arg(state.item.name, statusCode(state.answer.status)));
        return;
    }
    const QString value =
        state.value.value_or(QStringLiteral("(no %1)").arg(QLatin1String(state.item.type->name)));
    line(state.changed_at, QStringLiteral("%1 = %2  [%3]  %4")
                               .arg(state.item.name, value, hexText(state.answer.bytes),
                                    state.answer.status == 0 ? QStringLiteral("ok")
                                                             : statusCode(state.answer.status)));
}

void LineView::statusChanged(const WatchModel& model)
{
    line(model.statusSince(),
         QStringLiteral("status: ") + statusTextWithCode(model.status(), model.statusOf()));
}

void LineView::roundDone(const WatchModel&, const QDateTime&) {}

void LineView::end(const QDateTime& now)
{
    line(now, QStringLiteral("end"));
}

void LineView::line(const QDateTime& time, const QString& text)
{
    output_.line(time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz  ")) + printable(text));
}

} // namespace tovik_host
