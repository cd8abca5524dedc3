#include "tests/reliability/histories/play.h"

#include "tests/reliability/histories/draw.h"
#include "tests/reliability/histories/library_side.h"
#include "tests/reliability/histories/model.h"

#include <QTextStream>

#include <functional>

namespace play {

namespace {

std::uint64_t hashOf(const QByteArray& text)
{
    return std::hash<std::string>()(text.toStdString());
}

void compareTexts(const char* what, const QStringList& library, const QStringList& model,
                  QTextStream* out)
{
    if (library == model)
        return;
    *out << "    " << what << ":\n";
    int same = 0;
    while (same < library.size() && same < model.size() && library.at(same) == model.at(same))
        ++same;
    for (int i = same; i < library.size(); ++i)
        *out << "      library: " << library.at(i) << '\n';
    for (int i = same; i < model.size(); ++i)
        *out << "      model:   " << model.at(i) << '\n';
}

QString numberText(qint64 number)
{
    return number >= Stage::never - 1 ? QStringLiteral("never") : QString::number(number);
}

QString describe(const QString& event, const Seen& library, const Seen& model)
{
    QString text;
    QTextStream out(&text);
    out << "  at " << event << '\n';
    compareTexts("log", library.lines, model.lines, &out);
    compareTexts("requests", library.requests, model.requests, &out);
    compareTexts("answers", library.answers, model.answers, &out);
    for (std::size_t i = 0; i < model.numbers.size(); ++i) {
        if (i < library.numbers.size() && library.numbers[i] == model.numbers[i])
            continue;
        const QString name =
            i < seen::number_names.size()
                ? QString::fromLatin1(seen::number_names[i])
                : QStringLiteral("age of item %1").arg(i - seen::number_names.size());
        out << "    " << name << ": library "
            << (i < library.numbers.size() ? numberText(library.numbers[i]) : QString())
            << ", model " << numberText(model.numbers[i]) << '\n';
    }
    return text;
}

/// Library and model with their common service.
class Play
{
public:
    Play(const History& history, Coverage* coverage)
        : history_(history),
          coverage_(coverage),
          library_(history),
          model_(history)
    {
        compare(QStringLiteral("the start"));
    }

    /// False when they differ.
    bool step(const Event& event)
    {
        Reply reply;
        const std::vector<Reply::Operation> outstanding = model_.outstanding();
        if (event.kind == Event::reply && event.a < int(outstanding.size()))
            reply = replies::make(outstanding[std::size_t(event.a)], event.b, event.c, ++serial_);
        const QByteArray before = coverage_ ? model_.kindOfState() : QByteArray();
        library_.play(event, reply);
        model_.play(event, reply);
        if (coverage_) {
            const QByteArray after = model_.kindOfState();
            const QByteArray name = QByteArray(1, char('a' + event.kind)) + char('0' + event.b % 7);
            ++coverage_->events;
            coverage_->states.insert(hashOf(after));
            coverage_->transitions.insert(hashOf(before + name + after));
        }
        History one;
        one.events = {event};
        return compare(one.text().section(QLatin1Char(' '), -1));
    }

    bool finish()
    {
        for (const Event& event : {Event{Event::host}, Event{Event::close}, Event{Event::host}}) {
            if (!step(event))
                return false;
            for (int i = 0; event.kind == Event::host && i < int(history_.items.size()); ++i) {
                if (!step({Event::read, i, 3}))
                    return false;
            }
        }
        return true;
    }

    const Model& model() const { return model_; }
    const QString& difference() const { return difference_; }

private:
    bool compare(const QString& event)
    {
        const Seen of_library = library_.take();
        const Seen of_model = model_.take();
        if (of_library == of_model)
            return true;
        if (difference_.isEmpty())
            difference_ = describe(event, of_library, of_model);
        return false;
    }

    const History history_;
    Coverage* coverage_;
    LibrarySide library_;
    Model model_;
    int serial_ = 0;
    QString difference_;
};

/// Tries a change; keeps it when the history still differs.
bool tryChange(History* history, const std::function<void(History*)>& change)
{
    History changed = *history;
    change(&changed);
    if (difference(changed).isEmpty())
        return false;
    *history = changed;
    return true;
}

bool dropEvents(History* history)
{
    bool was_shrunk = false;
    for (std::size_t length = qMax<std::size_t>(1, history->events.size() / 2);; length /= 2) {
        for (std::size_t at = 0; at < history->events.size();) {
            const auto drop = [=](History* changed) {
                const auto first = changed->events.begin() + std::ptrdiff_t(at);
                const std::size_t left = changed->events.size() - at;
                changed->events.erase(first, first + std::ptrdiff_t(qMin(length, left)));
            };
            if (tryChange(history, drop))
                was_shrunk = true;
            else
                at += length;
        }
        if (length <= 1)
            return was_shrunk;
    }
}

void simplify(History* history)
{
    for (std::size_t at = history->items.size(); at-- > 0;)
        tryChange(history, [=](History* changed) {
            changed->items.erase(changed->items.begin() + std::ptrdiff_t(at));
        });
    for (std::size_t at = 0; at < history->items.size(); ++at)
        tryChange(history, [=](History* changed) { changed->items[at] = 0; });
    for (std::size_t at = 0; at < history->events.size(); ++at) {
        for (const int simple : {0, 1}) {
            if (history->events[at].c > simple)
                tryChange(history, [=](History* changed) { changed->events[at].c = simple; });
        }
        if (history->events[at].b != 0)
            tryChange(history, [=](History* changed) { changed->events[at].b = 0; });
    }
}

} // namespace

QString difference(const History& history, Coverage* coverage)
{
    Play play(history, coverage);
    for (const Event& event : history.events) {
        if (!play.difference().isEmpty() || !play.step(event))
            break;
    }
    if (play.difference().isEmpty())
        play.finish();
    return play.difference();
}

QString drawnDifference(std::mt19937_64* random, History* history, Coverage* coverage)
{
    *history = draw::setup(random);
    Play play(*history, coverage);
    const draw::Mood mood = draw::mood(random);
    for (int left = draw::length(random); left > 0 && play.difference().isEmpty(); --left) {
        history->events.push_back(draw::event(random, mood, play.model()));
        play.step(history->events.back());
    }
    if (play.difference().isEmpty())
        play.finish();
    return play.difference();
}

History shrunk(const History& history)
{
    History shortest = history;
    while (dropEvents(&shortest))
        simplify(&shortest);
    simplify(&shortest);
    return shortest;
}

QString row(const QString& history)
{
    return QStringLiteral("QTest::newRow(\"what it shows\")\n    << \"%1\";").arg(history);
}

} // namespace play
