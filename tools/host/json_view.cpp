#include "tools/host/json_view.h"

#include "tools/host/json_text.h"
#include "tools/host/status_text.h"

namespace tovik_host {

namespace {

OrderedJson event(const char* name, const QDateTime& time)
{
    OrderedJson line;
    line["event"] = name;
    line["time"] = jsonTime(time);
    return line;
}

} // namespace

void JsonView::start(const WatchSubject& subject, const QDateTime& now)
{
    OrderedJson line = event("start", now);
    line["library"] = subject.library.toStdString();
    line["driver_version"] = subject.driver_version.toStdString();
    if (subject.link.isEmpty()) {
        line["url"] = subject.url.toStdString();
        line["project"] = subject.project.toStdString();
    } else {
        line["link"] = subject.link.toStdString();
    }
    output_.line(jsonLine(line));
}

void JsonView::valueChanged(const ItemState& state)
{
    OrderedJson line = event("value", state.changed_at);
    addAnswer(line, state.item, state.answer, state.value);
    output_.line(jsonLine(line));
}

void JsonView::statusChanged(const WatchModel& model)
{
    OrderedJson line = event("status", model.statusSince());
    line["status"] = statusCode(model.status()).toStdString();
    line["status_text"] = statusText(model.status(), model.statusOf()).toStdString();
    output_.line(jsonLine(line));
}

void JsonView::roundDone(const WatchModel&, const QDateTime&) {}

void JsonView::end(const QDateTime& now)
{
    output_.line(jsonLine(event("end", now)));
}

} // namespace tovik_host
