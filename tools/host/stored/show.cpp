#include "tools/host/stored/commands.h"
#include "tools/host/stored/json.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/text.h"

namespace tovik_host::stored {

namespace {

using value::OrderedJson;

const int widest_cell = 40;

struct Column
{
    const char* title;
    const char* member;
};

const Column item_columns[] = {
    {"NAME", "name"},     {"ID", "dataitem_id"},      {"TYPE", "type"},
    {"LENGTH", "length"}, {"VALUE", "value"},         {"STATUS", "cloud_status"},
    {"ALERT", "alert"},   {"UPDATED", "update_time"}, {"MARKED", "marked"}};

QString shown(const OrderedJson& json)
{
    if (json.is_null())
        return u"(null)"_s;
    if (json.is_string()) {
        const QString text = QString::fromStdString('x' + json.get<std::string>()).mid(1);
        return text.isEmpty() ? u"\"\""_s : terminal::printable(text);
    }
    if (json.contains("hidden"))
        return u"(hidden; --show-password shows it)"_s;
    if (!json.is_object())
        return value::jsonLine(json);
    const QString type = shown(json.at("type"));
    if (json.contains("stream"))
        return type + u", stored as "_s + shown(json.at("stream"));
    if (!json.contains("value"))
        return type;
    const OrderedJson& value = json.at("value");
    return type + u' ' + (json.at("type") == "QString" ? shown(value) : value::jsonLine(value));
}

QString cell(const OrderedJson& structure, const char* member)
{
    return structure.contains(member) ? shown(structure.at(member)) : u"(missing)"_s;
}

QString counted(const OrderedJson& structure, const char* list, const QString& one)
{
    const QString more = one + u's';
    if (!structure.contains(list))
        return more + u" (missing)"_s;
    const std::size_t count = structure.at(list).size();
    return count == 0 ? u"no "_s + more : count == 1 ? u"1 "_s + one : u"%1 "_s.arg(count) + more;
}

QStringList itemTable(const OrderedJson& structure, const QString& indent)
{
    if (structure.value("dataitems", OrderedJson::array()).empty())
        return {};
    QVector<QStringList> rows(1);
    for (const Column& column : item_columns)
        rows.first() << QLatin1String(column.title);
    for (const OrderedJson& item : structure.at("dataitems")) {
        rows << QStringList();
        for (const Column& column : item_columns)
            rows.last() << cell(item, column.member);
    }
    return terminal::columns(rows, indent, widest_cell);
}

QString groupLine(const OrderedJson& group)
{
    QString line = u"  group "_s + cell(group, "group_id") + u':';
    for (const char* member : {"name", "location", "ddLocation", "alert", "permission", "marked"})
        line += u' ' + QLatin1String(member) + u' ' + cell(group, member) + u',';
    return line + u' ' + counted(group, "dataitems", u"item"_s);
}

QString kindText(const File& file)
{
    if (file.kind == File::configuration)
        return u"a configuration of a cloud driver (JSON)"_s;
    if (file.kind == File::record_json)
        return u"a configuration record as JSON"_s;
    const Hints& format = file.format;
    return u"%1, stream version %2, %3 endian%4, %5 bytes"_s.arg(
        QLatin1String(*format.is_variant ? "a configuration record in a variant"
                                         : "a bare configuration record"),
        rangeInWords(*format.versions), choices[1].word(*format.big_endian),
        QLatin1String(*format.single_precision ? ", floating numbers in single precision" : ""),
        QString::number(file.size));
}

/// The file in words, line by line: what it is, the account, the groups, the items. Members that a
/// damaged stream did not give are shown as missing.
/// \param record the file's record as JSON, in which texts may be hidden
QStringList viewOf(const File& file, const OrderedJson& record)
{
    const QString start = file.path + u": "_s;
    if (record.empty()) {
        return {start +
                u"nothing of a configuration record can be read, %1 bytes"_s.arg(file.size)};
    }
    QStringList lines = {start + kindText(file), QString()};
    for (const char* name : {"aux_flag", "host", "aux_value", "project", "email", "password"})
        lines << terminal::fitted(QLatin1String(name), 11) + cell(record, name);
    lines << QString() << counted(record, "groups", u"group"_s);
    for (const OrderedJson& group : record.value("groups", OrderedJson::array()))
        lines << groupLine(group) << itemTable(group, u"    "_s);
    lines << QString() << counted(record, "dataitems", u"served item"_s);
    return lines << itemTable(record, u"  "_s);
}

OrderedJson jsonOf(const File& file, const OrderedJson& record)
{
    OrderedJson problems = OrderedJson::array();
    for (const Problem& problem : file.reading.problems) {
        problems.push_back(
            {{"offset", problem.offset}, {"member", problem.member}, {"problem", problem.text}});
    }
    return {{"stream", formatToJson(file.format)}, {"tovik_iot", record}, {"problems", problems}};
}

/// Hides the texts of an account as far as they are not empty.
void hide(OrderedJson* record, const std::vector<const char*>& names)
{
    for (const char* name : names) {
        const auto member = record->find(name);
        const bool is_there = member != record->end() && !member->is_null();
        if (is_there && *member != OrderedJson(std::string()))
            (*record)[name] = {{"hidden", true}};
    }
}

} // namespace

int Show::run() const
{
    const File file = input.read(format, u"Say which it is"_s);
    OrderedJson record = recordToJson(file.reading.record, file.reading.known);
    if (!show_password)
        hide(&record, {"password"});
    // If a length is wrong, another text may have the password.
    if (!show_password && file.isDamaged())
        hide(&record, {"host", "project", "email"});
    terminal::Streams streams;
    streams.out.write(json ? value::jsonText(jsonOf(file, record))
                           : viewOf(file, record).join(u'\n') + u'\n');
    file.report(streams);
    if (file.isDamaged() && !show_password && file.reading.known > 0) {
        streams.complain(
            u"since a damaged stream may have the password elsewhere, host, project and email are "
            "hidden, too; --show-password shows all"_s);
    }
    return streams.codeAfterWriting(file.isDamaged() ? terminal::exitRefused : terminal::exitDone);
}

} // namespace tovik_host::stored
