#include "tools/host/stored/convert.h"
#include "tools/host/stored/file.h"
#include "tools/host/stored/json.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/output.h"
#include "tools/host/terminal/text_width.h"

#include <unistd.h>

namespace tovik_host::stored {

namespace {

void checkOutput(const Options& options)
{
    if (options.output != QLatin1String("-")) {
        terminal::checkOutputFile(options.output, options.force);
    } else if (!options.force && ::isatty(STDOUT_FILENO) != 0) {
        throw terminal::UsageError(
            QStringLiteral("the standard output is a terminal, and what is written "
                           "holds the password; --force writes it there, "
                           "\"tovik-host show\" shows it without"));
    }
}

/// Whether JSON is to be written.
bool choosesJson(const Options& options, File::Kind kind)
{
    if (options.to_json)
        return *options.to_json;
    if (options.output.endsWith(QLatin1String(".json")))
        return true;
    if (kind == File::stream && options.output != QLatin1String("-")) {
        throw terminal::UsageError(
            QStringLiteral("a stream can be turned into JSON or into another stream: "
                           "add --to json or --to stream, or give %1 a name that ends "
                           "with .json")
                .arg(terminal::printable(options.output)));
    }
    return kind == File::stream;
}

/// What to say of a damaged stream that is not written; nothing if it is.
QString refusal(const File& file, bool salvage)
{
    if (file.problems.isEmpty() || (salvage && file.record.known > 0))
        return QString();
    return file.record.known == 0
               ? QStringLiteral("nothing of a configuration record can be read, and nothing was "
                                "written")
               : QStringLiteral("nothing was written; --salvage writes what can be read, with "
                                "defaults for the rest");
}

/// The bytes in the one format that the hints leave, or in several that do not differ.
QByteArray streamOf(const PropertyTovikIot& record, Hints hints)
{
    if (!hints.is_variant) {
        throw terminal::UsageError(
            QStringLiteral("say how the host stores the record: --form variant "
                           "(as a QVariant) or --form record (the record alone)"));
    }
    hints.big_endian = hints.big_endian.value_or(true);
    hints.single_precision = hints.single_precision.value_or(false);
    const std::vector<Format> formats = possibleFormats(hints);
    const QByteArray bytes = written(record, formats.front());
    for (const Format& format : formats) {
        if (written(record, format) != bytes) {
            throw terminal::UsageError(
                QStringLiteral("the bytes depend on the stream version: add --stream-version 12 "
                               "for a host with Qt 4.6 to 4.8, or the name of the host's Qt, such "
                               "as Qt_5_15"));
        }
    }
    const QString loss = firstLoss(record, formats.front());
    if (!loss.isEmpty()) {
        throw terminal::UsageError(
            QStringLiteral("%1: would not come back as it is from a stream of version "
                           "%2 in %3 precision; version %4 in double precision keeps "
                           "all")
                .arg(loss, QString::number(formats.front().version),
                     choices[2].word(*hints.single_precision), QString::number(newestVersion())));
    }
    return bytes;
}

} // namespace

int convert(const Options& options)
{
    checkOutput(options);
    const bool to_stream = options.to_json == false;
    File file = readFile(options.input, options.from_json, to_stream ? Hints() : options.format,
                         to_stream ? QStringLiteral("The options describe OUT; convert IN to JSON "
                                                    "first, with --to json and one of these")
                                   : QStringLiteral("Say which it is"));
    const bool to_json = choosesJson(options, file.kind);
    file.notes << file.conversion_notes;
    report(file, options.input);
    const QString refused = refusal(file, options.salvage);
    if (!refused.isEmpty()) {
        report(refused);
        return terminal::exitRefused;
    }
    const Hints format = merged(options.format, file.format);
    const PropertyTovikIot& record = file.record.property;
    if (!to_json) {
        writeFile(options.output, streamOf(record, format), file.isSecret());
        return terminal::exitDone;
    }
    value::OrderedJson json = {{"stream", formatToJson(format)},
                               {"tovik_iot", recordToJson({record})}};
    if (json["stream"].empty())
        json.erase("stream");
    writeFile(options.output, fileText(json), file.isSecret());
    return terminal::exitDone;
}

} // namespace tovik_host::stored
