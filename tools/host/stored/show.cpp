#include "tools/host/stored/convert.h"
#include "tools/host/stored/file.h"
#include "tools/host/stored/json.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/output.h"
#include "tools/host/terminal/text_width.h"

#include <cerrno>
#include <unistd.h>

namespace tovik_host::stored {

namespace {

const int widest_cell = 40;
const int gap = 2;

struct Column
{
    const char* title;
    const char* member;
};

const Column item_columns[] = {
    {"NAME", "name"},     {"ID", "dataitem_id"},      {"TYPE", "type"},
    {"LENGTH", "length"}, {"VALUE", "value"},         {"STATUS", "cloud_status"},
    {"ALERT", "alert"},   {"UPDATED", "update_time"}, {"MARKED", "marked"}};

QString shown(const value::OrderedJson& json)
{
    if (json.is_null())
        return QStringLiteral("(null)");
    if (json.is_string()) {
        const QString text = QString::fromStdString('x' + json.get<std::string>()).mid(1);
        return text.isEmpty() ? QStringLiteral("\"\"") : terminal::printable(text);
    }
    if (json.contains("hidden"))
        return QStringLiteral("(hidden; --show-password shows it)");
    if (!json.is_object())
        return value::jsonLine(json);
    const QString type = shown(json.at("type"));
    if (json.contains("stream"))
        return type + QStringLiteral(", stored as ") + shown(json.at("stream"));
    if (!json.contains("value"))
        return type;
    const value::OrderedJson& value = json.at("value");
    return type + QLatin1Char(' ') +
           (json.at("type") == "QString" ? shown(value)
                                         : terminal::printable(value::jsonLine(value)));
}

QString cell(const value::OrderedJson& structure, const char* member)
{
    return structure.contains(member) ? shown(structure.at(member)) : QStringLiteral("(missing)");
}

QString counted(const value::OrderedJson& structure, const char* list, const QString& one)
{
    const QString more = one + QLatin1Char('s');
    if (!structure.contains(list))
        return more + QStringLiteral(" (missing)");
    const std::size_t count = structure.at(list).size();
    return count == 0   ? QStringLiteral("no ") + more
           : count == 1 ? QStringLiteral("1 ") + one
                        : QStringLiteral("%1 ").arg(count) + more;
}

QStringList itemTable(const value::OrderedJson& structure, const QString& indent)
{
    if (structure.value("dataitems", value::OrderedJson::array()).empty())
        return {};
    QVector<QStringList> rows(1);
    for (const Column& column : item_columns)
        rows.first() << QLatin1String(column.title);
    for (const value::OrderedJson& item : structure.at("dataitems")) {
        rows << QStringList();
        for (const Column& column : item_columns)
            rows.last() << cell(item, column.member);
    }
    QVector<int> widths(rows.first().size(), 0);
    for (const QStringList& row : rows) {
        for (int i = 0; i < row.size(); ++i)
            widths[i] = qBound(widths.at(i), terminal::displayWidth(row.at(i)), widest_cell);
    }
    QStringList lines;
    for (const QStringList& row : rows) {
        QString line = indent;
        for (int i = 0; i < row.size(); ++i)
            line += terminal::fitted(row.at(i), widths.at(i)) + QString(gap, QLatin1Char(' '));
        while (line.endsWith(QLatin1Char(' ')))
            line.chop(1);
        lines << line;
    }
    return lines;
}

QString groupLine(const value::OrderedJson& group)
{
    QString line = QStringLiteral("  group ") + cell(group, "group_id") + QLatin1Char(':');
    for (const char* member : {"name", "location", "ddLocation", "alert", "permission", "marked"}) {
        line += QLatin1Char(' ') + QLatin1String(member) + QLatin1Char(' ') + cell(group, member) +
                QLatin1Char(',');
    }
    return line + QLatin1Char(' ') + counted(group, "dataitems", QStringLiteral("item"));
}

QString kindLine(const File& file)
{
    if (file.kind == File::configuration)
        return QStringLiteral("a configuration of a cloud driver (JSON)");
    if (file.kind == File::record_json)
        return QStringLiteral("a configuration record as JSON");
    const Hints& format = file.format;
    return QStringLiteral("%1, stream version %2, %3 endian%4, %5 bytes")
        .arg(
            QLatin1String(*format.is_variant ? "a configuration record in a variant"
                                             : "a bare configuration record"),
            rangeInWords(*format.versions), QLatin1String(*format.big_endian ? "big" : "little"),
            QLatin1String(*format.single_precision ? ", floating numbers in single precision" : ""),
            QString::number(file.size));
}

/// The file in words, line by line: what it is, the account, the groups, the items. Long values are
/// cut; members that a damaged stream did not give are shown as missing.
/// \param record the file's record as JSON, in which texts may be hidden
QStringList viewOf(const File& file, const QString& path, const value::OrderedJson& record)
{
    const QString start = shownPath(path) + QStringLiteral(": ");
    if (record.empty()) {
        return {start + QStringLiteral("nothing of a configuration record can be read, %1 bytes")
                            .arg(file.size)};
    }
    QStringList lines = {start + kindLine(file), QString()};
    for (const char* name : {"aux_flag", "host", "aux_value", "project", "email", "password"})
        lines << terminal::fitted(QLatin1String(name), 11) + cell(record, name);
    lines << QString() << counted(record, "groups", QStringLiteral("group"));
    for (const value::OrderedJson& group : record.value("groups", value::OrderedJson::array()))
        lines << groupLine(group) << itemTable(group, QStringLiteral("    "));
    lines << QString() << counted(record, "dataitems", QStringLiteral("served item"));
    return lines << itemTable(record, QStringLiteral("  "));
}

/// Hides the texts of an account as far as they are not empty.
void hide(value::OrderedJson* record, const std::vector<const char*>& names)
{
    for (const char* name : names) {
        if (record->contains(name) && !record->at(name).is_null() &&
            record->at(name) != value::OrderedJson(""))
            (*record)[name] = {{"hidden", true}};
    }
}

} // namespace

int show(const Options& options)
{
    const File file = readFile(options.input, options.from_json, options.format,
                               QStringLiteral("Say which it is"));
    const bool is_damaged = !file.problems.isEmpty();
    value::OrderedJson record = recordToJson(file.record);
    if (!options.show_password)
        hide(&record, {"password"});
    // If a length is wrong, another text may have the password.
    if (!options.show_password && is_damaged)
        hide(&record, {"host", "project", "email"});
    terminal::Output out(STDOUT_FILENO);
    if (options.json) {
        value::OrderedJson problems = value::OrderedJson::array();
        for (const Problem& problem : file.problems) {
            problems.push_back({{"offset", problem.offset},
                                {"member", problem.member.toStdString()},
                                {"problem", problem.text.toStdString()}});
        }
        out.write(QString::fromUtf8(fileText({{"stream", formatToJson(file.format)},
                                              {"tovik_iot", record},
                                              {"problems", problems}})));
    } else {
        for (const QString& line : viewOf(file, options.input, record))
            out.line(line);
    }
    report(file, options.input);
    if (is_damaged && !options.show_password && file.record.known > 0) {
        report(QStringLiteral("since a damaged stream may have the password elsewhere, host, "
                              "project and email are hidden, too; --show-password shows all"));
    }
    // A reader that has seen enough is none to tell.
    if (out.error() != 0 && out.error() != EPIPE) {
        report(QStringLiteral("cannot write the standard output: ") + qt_error_string(out.error()));
        return terminal::exitUsage;
    }
    return is_damaged ? terminal::exitRefused : terminal::exitDone;
}

} // namespace tovik_host::stored
