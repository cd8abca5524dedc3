#include "tools/host/watch/watch_view.h"

#include "tools/host/driver/driver_session.h"
#include "tools/host/value/status_text.h"

namespace tovik_host::watch {

namespace {

std::optional<double> seconds(const std::optional<int>& milliseconds)
{
    return milliseconds ? std::optional<double>(*milliseconds / 1000.0) : std::nullopt;
}

/// Null while there was none.
value::OrderedJson lastError(const value::DriverNumbers& numbers, const QDateTime& now)
{
    if (*numbers.last_error == 0)
        return nullptr;
    value::OrderedJson error;
    error["result"] = *numbers.last_error;
    error["text"] = value::resultText(*numbers.last_error);
    if (numbers.last_error_age)
        error["time"] = value::jsonTime(now.addMSecs(-*numbers.last_error_age));
    return error;
}

/// By the items' names; of equal ones the first counts, as in the driver.
value::OrderedJson agesOf(const WatchModel& model)
{
    value::OrderedJson ages = value::OrderedJson::object();
    for (int i = 0; i < model.items().size(); ++i) {
        const std::string name = model.items().at(i).item.name.toStdString();
        if (!ages.contains(name))
            ages[name] = seconds(model.ageOf(i));
    }
    return ages;
}

class JsonView : public WatchView
{
public:
    explicit JsonView(terminal::Output& output) : output_(output) {}

    void start(const WatchSubject& subject, const QDateTime& now) override
    {
        value::OrderedJson line = value::jsonReport("start", now);
        line["library"] = subject.library;
        line["driver_version"] = subject.driver_version;
        if (subject.link.isEmpty()) {
            line["url"] = subject.url;
            line["project"] = subject.project;
        } else {
            line["link"] = subject.link;
        }
        output_.line(value::jsonLine(line));
    }

    void valueChanged(const ItemState& state) override
    {
        value::OrderedJson line = value::jsonReport("value", state.changed_at);
        driver::addAnswer(line, state.item, state.answer, state.value);
        line["stale"] = state.is_stale;
        if (state.is_waited_for)
            line["problem"] = "no value yet";
        output_.line(value::jsonLine(line));
    }

    void staleChanged(const WatchModel& model, int index, const QDateTime& now) override
    {
        value::OrderedJson line = value::jsonReport("stale", now);
        line["item"] = model.items().at(index).item.name;
        line["stale"] = model.items().at(index).is_stale;
        line["age_seconds"] = seconds(model.ageOf(index));
        output_.line(value::jsonLine(line));
    }

    void statusChanged(const WatchModel& model) override
    {
        value::OrderedJson line = value::jsonReport("status", model.statusSince());
        line["status"] = value::statusCode(model.status());
        line["status_text"] = value::statusText(model.status(), model.statusOf());
        if (model.status() != 0 && model.cycleEnd() >= 0) {
            line["cycle_ends_at"] = model.items().at(model.cycleEnd()).item.name;
            line["not_reached"] = value::OrderedJson::array();
            for (int i = 0; i < model.items().size(); ++i) {
                if (model.isNotReached(i))
                    line["not_reached"].push_back(model.items().at(i).item.name);
            }
        }
        output_.line(value::jsonLine(line));
    }

    void causeFound(const WatchModel& model, const QDateTime& now) override
    {
        value::OrderedJson line = value::jsonReport("cause", now);
        line["cause"] = model.cause();
        output_.line(value::jsonLine(line));
    }

    void numbersDue(const WatchModel& model, const QDateTime& now) override
    {
        const value::DriverNumbers& numbers = model.numbers();
        if (!numbers.isAny())
            return;
        value::OrderedJson line = value::jsonReport("metrics", now);
        if (numbers.cycle_count) {
            line["cycle_count"] = *numbers.cycle_count;
            line["cycle_seconds"] = seconds(numbers.cycle);
            line["longest_cycle_seconds"] = seconds(numbers.longest_cycle);
        }
        if (numbers.read_count) {
            line["read_count"] = *numbers.read_count;
            line["reads_per_second"] = model.readsPerSecond();
        }
        if (numbers.reconnect_count)
            line["reconnect_count"] = *numbers.reconnect_count;
        if (numbers.last_error)
            line["last_error"] = lastError(numbers, now);
        if (numbers.tells_ages)
            line["age_seconds"] = agesOf(model);
        output_.line(value::jsonLine(line));
    }

    void end(const QDateTime& now) override
    {
        output_.line(value::jsonLine(value::jsonReport("end", now)));
    }

private:
    terminal::Output& output_;
};

} // namespace

std::unique_ptr<WatchView> jsonView(terminal::Output& output)
{
    return std::make_unique<JsonView>(output);
}

} // namespace tovik_host::watch
