#include "tools/host/stored_convert.h"

#include "tools/host/stored_detection.h"
#include "tools/host/stored_file.h"
#include "tools/host/stored_json.h"
#include "tools/host/stored_view.h"
#include "tools/host/stored_writer.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/output.h"
#include "tools/host/terminal/text_width.h"
#include "tools/host/terminal/usage_error.h"

#include <cerrno>
#include <unistd.h>

namespace tovik_host {

namespace {

const char say_which[] = "Say which it is";

void report(const QString& line)
{
    Output(STDERR_FILENO).line(QStringLiteral("tovik-host: ") + line);
}

void reportNotes(const QStringList& notes)
{
    for (const QString& note : notes)
        report(QStringLiteral("warning: ") + note);
}

void reportNotes(const StoredFile& file, const QString& path)
{
    reportNotes(file.notes);
    for (const StoredProblem& problem : file.problems)
        report(problemText(problem, path));
}

bool isStandardOutput(const ConvertOptions& options)
{
    return options.output == QLatin1String("-");
}

void checkOutput(const ConvertOptions& options)
{
    if (!isStandardOutput(options)) {
        checkOutputFile(options.output, options.force);
    } else if (!options.force && ::isatty(STDOUT_FILENO) != 0) {
        throw UsageError(QStringLiteral("the standard output is a terminal, and what is written "
                                        "holds the password; --force writes it there, "
                                        "\"tovik-host show\" shows it without"));
    }
}

/// Whether JSON is to be written.
bool choosesJson(const ConvertOptions& options, StoredKind kind)
{
    if (options.to_json)
        return *options.to_json;
    if (options.output.endsWith(QLatin1String(".json")))
        return true;
    if (kind == StoredKind::stream && !isStandardOutput(options)) {
        throw UsageError(QStringLiteral("a stream can be turned into JSON or into another stream: "
                                        "add --to json or --to stream, or give %1 a name that ends "
                                        "with .json")
                             .arg(printable(options.output)));
    }
    return kind == StoredKind::stream;
}

/// What to say of a damaged stream that is not written; nothing if it is.
QString refusal(const StoredFile& file, bool salvage)
{
    if (file.problems.isEmpty())
        return QString();
    if (file.record.known == 0) {
        return QStringLiteral("nothing of a configuration record can be read, and nothing was "
                              "written");
    }
    return salvage ? QString()
                   : QStringLiteral("nothing was written; --salvage writes what can be read, with "
                                    "defaults for the rest");
}

FormatHints merged(const FormatHints& options, const FormatHints& file)
{
    FormatHints hints = file;
    if (options.form)
        hints.form = options.form;
    if (options.versions)
        hints.versions = options.versions;
    if (options.big_endian)
        hints.big_endian = options.big_endian;
    if (options.single_precision)
        hints.single_precision = options.single_precision;
    return hints;
}

/// The bytes in the one format that the hints leave, or in several that do not differ.
QByteArray streamOf(const StoredRecord& record, FormatHints hints)
{
    if (!hints.form) {
        throw UsageError(QStringLiteral("say how the host stores the record: --form variant "
                                        "(as a QVariant) or --form record (the record alone)"));
    }
    hints.big_endian = hints.big_endian.value_or(true);
    hints.single_precision = hints.single_precision.value_or(false);
    const QVector<StoredFormat> formats = possibleFormats(hints);
    const StoredWriting first = writeStored(record, formats.first());
    if (!first.ok() && formats.size() == 1)
        throw UsageError(first.problem);
    for (const StoredFormat& format : formats) {
        if (writeStored(record, format).bytes != first.bytes || !first.ok()) {
            throw UsageError(
                QStringLiteral("the bytes depend on the stream version: add --stream-version 12 "
                               "for a host with Qt 4.6 to 4.8, or the name of the host's Qt, such "
                               "as Qt_5_15"));
        }
    }
    return first.bytes;
}

QByteArray jsonOf(const StoredRecord& record, const FormatHints& hints)
{
    OrderedJson json = OrderedJson::object();
    const OrderedJson format = formatToJson(hints);
    if (!format.empty())
        json["stream"] = format;
    json["tovik_iot"] = recordToJson(record, HiddenTexts::none);
    return storedJsonText(json);
}

void complete(std::vector<StoredItem>& items)
{
    for (StoredItem& item : items)
        item.known = StoredItem::members;
}

/// Lets the defaults stand for what a damaged stream did not give.
void complete(StoredRecord* record)
{
    record->known = StoredRecord::members;
    for (StoredGroup& group : record->groups) {
        group.known = StoredGroup::members;
        complete(group.dataitems);
    }
    complete(record->dataitems);
}

} // namespace

int runConvert(const ConvertOptions& options)
{
    checkOutput(options);
    const bool to_stream = options.to_json && !*options.to_json;
    StoredFile file =
        readStoredFile(options.input, options.from_json, to_stream ? FormatHints() : options.format,
                       to_stream ? QStringLiteral("The options describe OUT; convert IN to JSON "
                                                  "first, with --to json and one of these")
                                 : QLatin1String(say_which));
    const bool to_json = choosesJson(options, file.kind);
    reportNotes(file, options.input);
    reportNotes(file.conversion_notes);
    const QString refused = refusal(file, options.salvage);
    if (!refused.isEmpty()) {
        report(refused);
        return exitRefused;
    }
    const bool is_secret = file.isSecret();
    complete(&file.record);
    const FormatHints hints = merged(options.format, file.hints);
    const QByteArray bytes = to_json ? jsonOf(file.record, hints) : streamOf(file.record, hints);
    writeStoredFile(options.output, bytes, is_secret);
    return exitDone;
}

int runShow(const ShowOptions& options)
{
    const StoredFile file =
        readStoredFile(options.input, options.from_json, options.format, QLatin1String(say_which));
    const HiddenTexts hidden = options.show_password     ? HiddenTexts::none
                               : file.problems.isEmpty() ? HiddenTexts::password
                                                         : HiddenTexts::account;
    Output out(STDOUT_FILENO);
    if (options.json) {
        OrderedJson json = OrderedJson::object();
        json["stream"] = formatToJson(file.hints);
        json["tovik_iot"] = recordToJson(file.record, hidden);
        json["problems"] = OrderedJson::array();
        for (const StoredProblem& problem : file.problems) {
            json["problems"].push_back({{"offset", problem.offset},
                                        {"member", problem.member.toStdString()},
                                        {"problem", problem.text.toStdString()}});
        }
        out.write(QString::fromUtf8(storedJsonText(json)));
    } else {
        for (const QString& line : storedView(file, options.input, hidden))
            out.line(line);
    }
    reportNotes(file, options.input);
    if (hidden == HiddenTexts::account && file.record.known > 0) {
        report(QStringLiteral("since a damaged stream may have the password elsewhere, host, "
                              "project and email are hidden, too; --show-password shows all"));
    }
    // A reader that has seen enough is none to tell.
    if (out.error() != 0 && out.error() != EPIPE) {
        report(QStringLiteral("cannot write the standard output: ") + qt_error_string(out.error()));
        return exitUsage;
    }
    return file.problems.isEmpty() ? exitDone : exitRefused;
}

} // namespace tovik_host
