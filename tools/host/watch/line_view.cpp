#include "tools/host/watch/watch_view.h"

#include "tools/host/terminal/text.h"
#include "tools/host/value/status_text.h"

namespace tovik_host::watch {

namespace {

/// Which value is the oldest; one that has never come is older than all others.
QString oldestText(const WatchModel& model)
{
    int oldest = -1;
    for (int i = 0; i < model.items().size(); ++i) {
        if (!model.ageOf(i))
            return u"no value yet of %1"_s.arg(model.items().at(i).item.name);
        if (oldest < 0 || *model.ageOf(i) > *model.ageOf(oldest))
            oldest = i;
    }
    if (oldest < 0)
        return u"no items"_s;
    return u"oldest value: %1, %2 s"_s.arg(model.items().at(oldest).item.name)
        .arg(*model.ageOf(oldest) / 1000.0, 0, 'f', 1);
}

class LineView : public WatchView
{
public:
    explicit LineView(terminal::Output& output) : output_(output) {}

    void start(const WatchSubject& subject, const QDateTime& now) override
    {
        const QString what = subject.link.isEmpty()
                                 ? u"project %1 at %2"_s.arg(subject.project, subject.url)
                                 : subject.link;
        line(now, u"driver %1 watches %2"_s.arg(subject.driver_version, what));
    }

    void valueChanged(const ItemState& state) override
    {
        if (!state.answer.arrived) {
            line(state.changed_at, u"%1: the driver does not answer"_s.arg(state.item.name));
            return;
        }
        if (state.is_waited_for) {
            QString text = u"%1 = %2  no value yet"_s.arg(state.item.name, value::noValue());
            if (state.answer.status != 0)
                text += u"  "_s + value::statusCode(state.answer.status);
            line(state.changed_at, text);
            return;
        }
        if (!state.answer.has_value) {
            line(state.changed_at, u"%1: no value  %2"_s.arg(
                                       state.item.name, value::statusCode(state.answer.status)));
            return;
        }
        const QString value =
            state.value.value_or(u"(no %1)"_s.arg(QLatin1String(state.item.type->name)));
        line(state.changed_at,
             u"%1 = %2  [%3]  %4"_s.arg(state.item.name, value, value::hexText(state.answer.bytes),
                                        value::statusWord(state.answer.status)));
    }

    void staleChanged(const WatchModel& model, int index, const QDateTime& now) override
    {
        const ItemState& state = model.items().at(index);
        line(now, state.is_stale ? u"%1: stale, no news for %2 s"_s.arg(state.item.name)
                                       .arg(model.ageOf(index).value_or(0) / 1000.0, 0, 'f', 1)
                                 : u"%1: no longer stale"_s.arg(state.item.name));
    }

    void statusChanged(const WatchModel& model) override
    {
        line(model.statusSince(), u"status: "_s + model.statusText());
    }

    void causeFound(const WatchModel& model, const QDateTime& now) override
    {
        line(now, u"cause: "_s + model.cause());
    }

    void numbersDue(const WatchModel& model, const QDateTime& now) override
    {
        const QString numbers = value::numbersText(model.numbers(), model.readsPerSecond(), now);
        if (numbers.isEmpty())
            return;
        QString text = u"metrics: "_s + numbers;
        if (model.numbers().tells_ages)
            text += u", "_s + oldestText(model);
        line(now, text);
    }

    void end(const QDateTime& now) override { line(now, u"end"_s); }

private:
    void line(const QDateTime& time, const QString& text)
    {
        output_.line(time.toString(u"yyyy-MM-dd HH:mm:ss.zzz  "_s) + terminal::printable(text));
    }

    terminal::Output& output_;
};

} // namespace

std::unique_ptr<WatchView> lineView(terminal::Output& output)
{
    return std::make_unique<LineView>(output);
}

} // namespace tovik_host::watch
