#include "tools/host/stored_view.h"

#include "tools/host/stored_json.h"
#include "tools/host/terminal/text_width.h"

#include <QVector>

namespace tovik_host {

namespace {

const int widest_cell = 40;
const int gap = 2;

QString shown(const QString& text)
{
    if (text.isNull())
        return QStringLiteral("(null)");
    return text.isEmpty() ? QStringLiteral("\"\"") : printable(text);
}

QString shown(bool flag)
{
    return flag ? QStringLiteral("true") : QStringLiteral("false");
}

QString shown(qint32 number)
{
    return QString::number(number);
}

/// The type and the value, as the JSON has it.
QString shown(const StoredValue& value)
{
    const QString type = QString::fromLatin1(value.type->name);
    const QString mark = value.hasUsualNullFlag() ? QString() : QStringLiteral(" (null flag)");
    if (value.type->kind == ValueKind::nothing)
        return type + mark;
    const QString content = value.type->kind == ValueKind::text
                                ? shown(value.text)
                                : jsonLine(valueToJson(value).at("value"));
    return type + QLatin1Char(' ') + printable(content) + mark;
}

using Row = QVector<QString>;

/// Collects the members that are known of a structure, lists left out.
class Collector
{
public:
    Collector(Row* cells, int known) : cells_(cells), known_(known) {}

    template <typename T>
    bool operator()(const char*, const T& member)
    {
        const QString missing = QStringLiteral("(missing)");
        cells_->append(known_-- > 0 ? shown(member) : missing);
        return true;
    }
    template <typename T>
    bool operator()(const char*, const std::vector<T>&)
    {
        return true;
    }

private:
    Row* cells_;
    int known_;
};

template <typename T>
Row cellsOf(const T& structure)
{
    Row cells;
    Collector collector(&cells, structure.known);
    T::visit(structure, collector);
    return cells;
}

QString tableLine(const Row& row, const QVector<int>& widths, const QString& indent)
{
    QString line = indent;
    for (int i = 0; i < row.size(); ++i)
        line += fitted(row.at(i), widths.at(i)) + QString(gap, QLatin1Char(' '));
    while (line.endsWith(QLatin1Char(' ')))
        line.chop(1);
    return line;
}

QStringList itemTable(const std::vector<StoredItem>& items, const QString& indent)
{
    QVector<Row> rows = {{QStringLiteral("NAME"), QStringLiteral("ID"), QStringLiteral("TYPE"),
                          QStringLiteral("LENGTH"), QStringLiteral("VALUE"),
                          QStringLiteral("STATUS"), QStringLiteral("ALERT"),
                          QStringLiteral("UPDATED"), QStringLiteral("MARKED")}};
    for (const StoredItem& item : items)
        rows << cellsOf(item);
    QVector<int> widths(rows.first().size(), 0);
    for (const Row& row : rows) {
        for (int i = 0; i < row.size(); ++i)
            widths[i] = qBound(widths.at(i), displayWidth(row.at(i)), widest_cell);
    }
    QStringList lines;
    for (const Row& row : rows)
        lines << tableLine(row, widths, indent);
    return lines;
}

/// \param is_known whether the stream gave the count
QString counted(std::size_t count, bool is_known, const QString& one, const QString& more)
{
    if (!is_known)
        return more + QStringLiteral(" (missing)");
    return count == 0   ? QStringLiteral("no ") + more
           : count == 1 ? QStringLiteral("1 ") + one
                        : QStringLiteral("%1 ").arg(count) + more;
}

QString kindLine(const StoredFile& file)
{
    if (file.kind == StoredKind::configuration)
        return QStringLiteral("a configuration of a cloud driver (JSON)");
    if (file.kind == StoredKind::record_json)
        return QStringLiteral("a configuration record as JSON");
    const QString form = file.format.form == StoredForm::variant
                             ? QStringLiteral("a configuration record in a variant")
                             : QStringLiteral("a bare configuration record");
    const QString precision = file.format.single_precision
                                  ? QStringLiteral(", floating numbers in single precision")
                                  : QString();
    return QStringLiteral("%1, stream version %2, %3 endian%4, %5 bytes")
        .arg(form, rangeInWords(file.versions), orderName(file.format.big_endian), precision)
        .arg(file.bytes.size());
}

QString shownAccount(const QString& text, HiddenTexts hidden, const char* name)
{
    return isHidden(name, hidden) && !text.isEmpty()
               ? QStringLiteral("(hidden; --show-password shows it)")
               : shown(text);
}

template <typename T>
QString shownAccount(const T& member, HiddenTexts, const char*)
{
    return shown(member);
}

/// Collects a line for each member that is no list.
class AccountLines
{
public:
    AccountLines(QStringList* lines, int known, HiddenTexts hidden)
        : lines_(lines),
          known_(known),
          hidden_(hidden)
    {}

    template <typename T>
    bool operator()(const char* name, const T& member)
    {
        lines_->append(
            fitted(QString::fromLatin1(name), 11) +
            (known_-- > 0 ? shownAccount(member, hidden_, name) : QStringLiteral("(missing)")));
        return true;
    }
    template <typename T>
    bool operator()(const char*, const std::vector<T>&)
    {
        return true;
    }

private:
    QStringList* lines_;
    int known_;
    HiddenTexts hidden_;
};

QStringList accountLines(const StoredRecord& record, HiddenTexts hidden)
{
    QStringList lines;
    AccountLines collector(&lines, record.known, hidden);
    StoredRecord::visit(record, collector);
    return lines;
}

QStringList groupLines(const StoredGroup& group)
{
    const Row cells = cellsOf(group);
    QStringList lines = {
        QStringLiteral("  group %1: name %2, location %3, ddLocation %4, alert %5, permission %6, "
                       "marked %7, %8")
            .arg(cells.at(0), cells.at(1), cells.at(2), cells.at(3), cells.at(4), cells.at(5),
                 cells.at(6),
                 counted(group.dataitems.size(), group.known == StoredGroup::members,
                         QStringLiteral("item"), QStringLiteral("items")))};
    if (!group.dataitems.empty())
        lines << itemTable(group.dataitems, QStringLiteral("    "));
    return lines;
}

} // namespace

QStringList storedView(const StoredFile& file, const QString& path, HiddenTexts hidden)
{
    const StoredRecord& record = file.record;
    if (record.known == 0) {
        return {QStringLiteral("%1: nothing of a configuration record can be read, %2 bytes")
                    .arg(shownPath(path))
                    .arg(file.bytes.size())};
    }
    QStringList lines = {shownPath(path) + QStringLiteral(": ") + kindLine(file), QString()};
    lines << accountLines(record, hidden) << QString();
    lines << counted(record.groups.size(), record.known >= StoredRecord::members - 1,
                     QStringLiteral("group"), QStringLiteral("groups"));
    for (const StoredGroup& group : record.groups)
        lines << groupLines(group);
    lines << QString()
          << counted(record.dataitems.size(), record.known == StoredRecord::members,
                     QStringLiteral("served item"), QStringLiteral("served items"));
    if (!record.dataitems.empty())
        lines << itemTable(record.dataitems, QStringLiteral("  "));
    return lines;
}

QString problemText(const StoredProblem& problem, const QString& path)
{
    const QString member =
        problem.member.isEmpty() ? QString() : problem.member + QStringLiteral(": ");
    return QStringLiteral("%1: byte %2: %3%4")
        .arg(shownPath(path))
        .arg(problem.offset)
        .arg(member, problem.text);
}

} // namespace tovik_host
