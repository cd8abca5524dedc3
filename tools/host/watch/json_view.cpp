#include "tools/host/watch/json_view.h"

#include "tools/host/driver/answer_json.h"
#include "tools/host/value/status_text.h"

namespace tovik_host {

namespace {

OrderedJson event(const char* name, const QDateTime& time)
{
    OrderedJson line;
    line["event"] = name;
    line["time"] = jsonTime(time);
    return line;
}

OrderedJson seconds(const std::optional<int>& milliseconds)
{
    return milliseconds ? OrderedJson(*milliseconds / 1000.0) : OrderedJson(nullptr);
}

/// Null while there was none.
OrderedJson lastError(const DriverNumbers& numbers, const QDateTime& now)
{
    if (*numbers.last_error == 0)
        return nullptr;
    OrderedJson error;
    error["result"] = *numbers.last_error;
    error["text"] = resultText(*numbers.last_error).toStdString();
    if (numbers.last_error_age)
        error["time"] = jsonTime(now.addMSecs(-*numbers.last_error_age));
    return error;
}

/// By the items' names; of equal ones the first counts, as in the driver.
OrderedJson agesOf(const WatchModel& model)
{
    OrderedJson ages = OrderedJson::object();
    for (int i = 0; i < model.items().size(); ++i) {
        const std::string name = model.items().at(i).item.name.toStdString();
        if (!ages.contains(name))
            ages[name] = seconds(model.ageOf(i));
    }
    return ages;
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

void JsonView::numbersDue(const WatchModel& model, const QDateTime& now)
{
    const DriverNumbers& numbers = model.numbers();
    if (!numbers.isAny())
        return;
    OrderedJson line = event("metrics", now);
    if (numbers.cycle_count) {
        line["cycle_count"] = *numbers.cycle_count;
        line["cycle_seconds"] = seconds(numbers.cycle);
        line["longest_cycle_seconds"] = seconds(numbers.longest_cycle);
    }
    if (numbers.read_count) {
        const std::optional<double> rate = model.readsPerSecond();
        line["read_count"] = *numbers.read_count;
        line["reads_per_second"] = rate ? OrderedJson(*rate) : OrderedJson(nullptr);
    }
    if (numbers.reconnect_count)
        line["reconnect_count"] = *numbers.reconnect_count;
    if (numbers.last_error)
        line["last_error"] = lastError(numbers, now);
    if (numbers.tells_ages)
        line["age_seconds"] = agesOf(model);
    output_.line(jsonLine(line));
}

void JsonView::end(const QDateTime& now)
{
    output_.line(jsonLine(event("end", now)));
}

} // namespace tovik_host
