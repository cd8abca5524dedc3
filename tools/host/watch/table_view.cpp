#include "tools/host/watch/table_view.h"

#include "tools/host/terminal/text.h"
#include "tools/host/value/status_text.h"

#include <algorithm>
#include <array>

namespace tovik_host::watch {

namespace {

const std::size_t column_count = 6;
using Row = std::array<QString, column_count>;
using Widths = std::array<int, column_count>;

const int gap = 2;
const int narrowest = 4;
/// A column of this width still says something.
const int comfortable = 11;
/// On a lower screen the items need the line of the driver's numbers.
const int rows_for_numbers = 8;

const std::size_t type_column = 1;
const std::size_t bytes_column = 3;
const std::size_t age_column = 5;

/// \param has_ages whether the driver tells when the service delivered a value; else the last
///        column is the time since the bytes changed.
Row columnNames(bool has_ages)
{
    return {u"ITEM"_s,  u"TYPE"_s,   u"VALUE"_s,
            u"BYTES"_s, u"STATUS"_s, has_ages ? u"AGE"_s : u"CHANGED"_s};
}

QString ageColumn(const WatchModel& model, int index, const QDateTime& now)
{
    if (!model.numbers().tells_ages)
        return ageText(model.items().at(index).changed_at.secsTo(now));
    const std::optional<int> age = model.ageOf(index);
    if (!age)
        return u"never"_s;
    const bool is_young = *age < 10000;
    return is_young ? u"%1 s"_s.arg(*age / 1000.0, 0, 'f', 1) : ageText(*age / 1000);
}

Row rowOf(const WatchModel& model, int index, const QDateTime& now)
{
    const ItemState& state = model.items().at(index);
    const bool is_fine = state.answer.status == 0;
    QString status = value::statusWord(state.answer.status);
    if (!state.answer.arrived)
        status = u"no answer"_s;
    else if (model.isNotReached(index))
        status = u"not reached"_s;
    else if (state.is_waited_for && is_fine)
        status = u"no value yet"_s;
    else if (state.is_stale)
        status = is_fine ? u"stale"_s : status + u" stale"_s;
    return {terminal::printable(state.item.name),
            QString::fromLatin1(state.item.type->name),
            terminal::printable(state.value.value_or(value::noValue())),
            value::hexText(state.answer.bytes),
            status,
            ageColumn(model, index, now)};
}

Widths naturalWidths(const QVector<Row>& rows)
{
    Widths widths = {};
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < column_count; ++i)
            widths[i] = qMax(widths[i], terminal::displayWidth(row[i]));
    }
    return widths;
}

int totalWidth(const Widths& widths)
{
    int total = -gap;
    for (const int width : widths)
        total += width > 0 ? width + gap : 0;
    return total;
}

/// Makes the table fit: first columns go that say least, then the widest ones are narrowed. A
/// column of no width is not shown.
Widths fittingWidths(Widths widths, int columns)
{
    for (const std::size_t dispensable : {bytes_column, type_column, age_column}) {
        Widths narrowed = widths;
        for (int& width : narrowed)
            width = qMin(width, comfortable);
        if (totalWidth(narrowed) <= columns)
            break;
        widths[dispensable] = 0;
    }
    while (totalWidth(widths) > columns) {
        int& widest = *std::max_element(widths.begin(), widths.end());
        if (widest <= narrowest)
            break;
        --widest;
    }
    return widths;
}

QString joined(const Row& row, const Widths& widths, int columns)
{
    QString line;
    for (std::size_t i = 0; i < column_count; ++i) {
        if (widths[i] > 0)
            line += terminal::fitted(row[i], widths[i]) + QString(gap, u' ');
    }
    return terminal::clipped(terminal::trimmedRight(line), columns);
}

/// How many values are not there, or old; empty: none.
QString missingText(const WatchModel& model)
{
    QStringList parts;
    const int count = model.items().size();
    if (model.waitingCount() > 0)
        parts << u"%1 of %2 have not come yet"_s.arg(model.waitingCount()).arg(count);
    if (model.staleCount() > 0) {
        parts << u"%1 of %2 stale, no news for %3 s"_s.arg(model.staleCount())
                     .arg(count)
                     .arg(model.staleAfter() / 1000);
    }
    return parts.join(u"; "_s);
}

void addHeader(QVector<ScreenLine>& screen, const WatchSubject& subject, const WatchModel& model,
               const QDateTime& now, terminal::ScreenSize size)
{
    const auto add = [&](const QString& text, LineStyle style) {
        screen << ScreenLine{terminal::clipped(terminal::printable(text), size.columns), style};
    };
    add(subject.link.isEmpty() ? u"Service  %1   project %2"_s.arg(subject.url, subject.project)
                               : u"Device   %1"_s.arg(subject.link),
        LineStyle::plain);
    add(u"Driver   %1"_s.arg(subject.driver_version), LineStyle::plain);
    const QString since = u", since %1 (%2)"_s.arg(model.statusSince().toString(u"HH:mm:ss"_s),
                                                   ageText(model.statusSince().secsTo(now)));
    add(u"Status   "_s + model.statusText() + since,
        model.status() == 0 ? LineStyle::plain : LineStyle::trouble);
    if (!model.cause().isEmpty())
        add(u"Cause    "_s + model.cause(), LineStyle::trouble);
    const QString missing = missingText(model);
    if (!missing.isEmpty())
        add(u"Values   "_s + missing, model.staleCount() > 0 ? LineStyle::stale : LineStyle::plain);
    const QString numbers = value::numbersText(model.numbers(), model.readsPerSecond(), now);
    if (!numbers.isEmpty() && size.rows >= rows_for_numbers)
        add(u"Metrics  "_s + numbers, LineStyle::plain);
    if (missing.isEmpty() || size.rows >= rows_for_numbers)
        add(QString(), LineStyle::plain);
}

LineStyle styleOf(const WatchModel& model, int index)
{
    const ItemState& state = model.items().at(index);
    if (model.isNotReached(index))
        return LineStyle::stale;
    if (!state.answer.arrived || state.answer.status != 0)
        return LineStyle::trouble;
    return state.is_stale ? LineStyle::stale : LineStyle::plain;
}

void addItems(QVector<ScreenLine>& screen, const WatchModel& model, const QDateTime& now,
              terminal::ScreenSize size)
{
    QVector<Row> rows = {columnNames(model.numbers().tells_ages)};
    for (int i = 0; i < model.items().size(); ++i)
        rows << rowOf(model, i, now);
    const Widths widths = fittingWidths(naturalWidths(rows), size.columns);
    const int room = qMax(2, size.rows - screen.size());
    const bool all_fit = rows.size() <= room;
    const int shown = all_fit ? rows.size() : room - 1;
    for (int i = 0; i < shown; ++i) {
        const LineStyle style = i == 0 ? LineStyle::heading : styleOf(model, i - 1);
        screen << ScreenLine{joined(rows.at(i), widths, size.columns), style};
    }
    if (!all_fit) {
        const QString rest = u"%1 %2 more items"_s.arg(QChar(0x2026)).arg(rows.size() - shown);
        screen << ScreenLine{terminal::clipped(rest, size.columns), LineStyle::log};
    }
}

void addLog(QVector<ScreenLine>& screen, const QStringList& log, terminal::ScreenSize size)
{
    const int room = size.rows - screen.size() - 2;
    if (log.isEmpty() || room < 1)
        return;
    screen << ScreenLine{QString(), LineStyle::plain};
    screen << ScreenLine{terminal::clipped(u"LOG OF THE DRIVER"_s, size.columns),
                         LineStyle::heading};
    for (const QString& line : log.mid(qMax(0, log.size() - room)))
        screen << ScreenLine{terminal::clipped(terminal::printable(line), size.columns),
                             LineStyle::log};
}

} // namespace

QVector<ScreenLine> drawTable(const WatchSubject& subject, const WatchModel& model,
                              const QStringList& log, const QDateTime& now,
                              terminal::ScreenSize size)
{
    QVector<ScreenLine> screen;
    addHeader(screen, subject, model, now, size);
    addItems(screen, model, now, size);
    addLog(screen, log, size);
    return screen;
}

QString ageText(qint64 seconds)
{
    struct Unit
    {
        qint64 seconds;
        const char* name;
    };
    static const Unit units[] = {{86400, "d"}, {3600, "h"}, {60, "min"}};
    for (const Unit& unit : units) {
        if (seconds >= unit.seconds)
            return u"%1 %2"_s.arg(seconds / unit.seconds).arg(QLatin1String(unit.name));
    }
    return u"%1 s"_s.arg(qMax(qint64(0), seconds));
}

} // namespace tovik_host::watch
