#include "tools/host/stored/commands.h"
#include "tools/host/stored/json.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/text.h"

namespace tovik_host::stored {

namespace {

bool isStandard(const QString& output)
{
    return output == QLatin1String("-");
}

void checkOutput(const Convert& options)
{
    if (!isStandard(options.output)) {
        terminal::checkOutputFile(options.output, options.force);
    } else if (!options.force && ::isatty(STDOUT_FILENO) != 0) {
        throw terminal::UsageError(
            u"the standard output is a terminal, and what is written holds the password; --force "
            "writes it there, \"tovik-host show\" shows it without"_s);
    }
}

/// Whether JSON is to be written.
bool choosesJson(const Convert& options, File::Kind kind)
{
    if (options.to_json)
        return *options.to_json;
    if (options.output.endsWith(QLatin1String(".json")))
        return true;
    if (kind == File::stream && !isStandard(options.output)) {
        throw terminal::UsageError(
            u"a stream can be turned into JSON or into another stream: add --to json or --to "
            "stream, or give %1 a name that ends with .json"_s.arg(
                terminal::printable(options.output)));
    }
    return kind == File::stream;
}

/// The bytes in the one format that the hints leave, or in several that do not differ.
QByteArray streamOf(const PropertyTovikIot& record, Hints hints)
{
    if (!hints.is_variant) {
        throw terminal::UsageError(
            u"say how the host stores the record: --form variant (as a QVariant) or --form record "
            "(the record alone)"_s);
    }
    hints.big_endian = hints.big_endian.value_or(true);
    hints.single_precision = hints.single_precision.value_or(false);
    const std::vector<Format> formats = possibleFormats(hints);
    const QByteArray bytes = written(record, formats.front());
    for (const Format& format : formats) {
        if (written(record, format) != bytes) {
            throw terminal::UsageError(
                u"the bytes depend on the stream version: add --stream-version 12 for a host with "
                "Qt 4.6 to 4.8, or the name of the host's Qt, such as Qt_5_15"_s);
        }
    }
    const QString loss = firstLoss(record, formats.front());
    if (!loss.isEmpty()) {
        throw terminal::UsageError(
            u"%1: would not come back as it is from a stream of version %2 in %3 precision; "
            "version %4 in double precision keeps all"_s.arg(
                loss, QString::number(formats.front().version),
                choices[2].word(*hints.single_precision), QString::number(all_versions.last)));
    }
    return bytes;
}

QByteArray jsonOf(const PropertyTovikIot& record, const Hints& format)
{
    value::OrderedJson json = {{"stream", formatToJson(format)},
                               {"tovik_iot", recordToJson(record)}};
    if (json["stream"].empty())
        json.erase("stream");
    return value::jsonText(json).toUtf8();
}

} // namespace

int Convert::run() const
{
    checkOutput(*this);
    const bool to_stream = to_json == false;
    File file = input.read(
        to_stream ? Hints() : format,
        to_stream
            ? u"The options describe OUT; convert IN to JSON first, with --to json and one of "
              "these"_s
            : u"Say which it is"_s);
    const bool writes_json = choosesJson(*this, file.kind);
    file.notes << file.conversion_notes;
    terminal::Streams streams;
    file.report(streams);
    if (file.isDamaged() && (!salvage || file.reading.known == 0)) {
        streams.complain(
            file.reading.known == 0
                ? u"nothing of a configuration record can be read, and nothing was written"_s
                : u"nothing was written; --salvage writes what can be read, with defaults for the "
                  "rest"_s);
        return terminal::exitRefused;
    }
    const Hints known = merged(format, file.format);
    const PropertyTovikIot& record = file.reading.record;
    const QByteArray bytes = writes_json ? jsonOf(record, known) : streamOf(record, known);
    if (!isStandard(output)) {
        terminal::saveFile(output, bytes, file.isSecret());
        return terminal::exitDone;
    }
    streams.out.write(bytes);
    if (streams.out.error() != 0) {
        throw terminal::UsageError(
            u"cannot write the standard output: %1"_s.arg(qt_error_string(streams.out.error())));
    }
    return terminal::exitDone;
}

} // namespace tovik_host::stored
