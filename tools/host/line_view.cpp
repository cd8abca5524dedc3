#include "tools/host/line_view.h"

#include "tools/host/status_text.h"
#include "tools/host/text_width.h"

namespace tovik_host {

void LineView::start(const WatchSubject& subject, const QDateTime& now)
{
    line(now, QStringLiteral("driver %1 watches project %2 at %3")
                  .arg(subject.driver_version, subject.project, subject.url));
}

void LineView::valueChanged(const ItemState& state)
{
    if (!state.answer.arrived) {
        line(state.changed_at,
             QStringLiteral("%1: the driver does not answer").arg(state.item.name));
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
    const QString code =
        model.status() == 0 ? QString() : QStringLiteral(" (%1)").arg(statusCode(model.status()));
    line(model.statusSince(), QStringLiteral("status: ") + statusText(model.status()) + code);
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
