#include "tools/host/stored_file.h"

#include "tools/host/stored_config.h"
#include "tools/host/stored_json.h"
#include "tools/host/terminal/output.h"
#include "tools/host/terminal/text_width.h"
#include "tools/host/terminal/usage_error.h"

#include <QFile>
#include <QUrl>

#include <cstdio>

namespace tovik_host {

namespace {

const int deepest_json = 200;

bool isStandard(const QString& path)
{
    return path == QLatin1String("-");
}

QByteArray readBytes(const QString& path)
{
    QFile file(path);
    const bool is_open =
        isStandard(path) ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
    const QByteArray bytes = is_open ? file.read(largest_file + 1) : QByteArray();
    if (!is_open || file.error() != QFileDevice::NoError) {
        throw UsageError(
            QStringLiteral("cannot read %1: %2").arg(shownPath(path), file.errorString()));
    }
    if (bytes.size() > largest_file) {
        throw UsageError(QStringLiteral("%1 is larger than %2 MiB, which no configuration is")
                             .arg(shownPath(path))
                             .arg(largest_file / 1024 / 1024));
    }
    if (bytes.isEmpty())
        throw UsageError(QStringLiteral("%1 is empty").arg(shownPath(path)));
    return bytes;
}

bool looksLikeJson(const QByteArray& bytes)
{
    const QByteArray mark("\xEF\xBB\xBF");
    for (int i = bytes.startsWith(mark) ? mark.size() : 0; i < bytes.size(); ++i) {
        const char character = bytes.at(i);
        if (character != ' ' && character != '\t' && character != '\n' && character != '\r')
            return character == '{';
    }
    return false;
}

/// Whether the brackets outside of texts stay within the limit that the parser can bear.
bool isShallow(const QByteArray& json)
{
    int depth = 0;
    bool in_text = false;
    for (int i = 0; i < json.size(); ++i) {
        const char character = json.at(i);
        if (in_text && character == '\\')
            ++i;
        else if (character == '"')
            in_text = !in_text;
        else if (!in_text && (character == '{' || character == '['))
            ++depth;
        else if (!in_text && (character == '}' || character == ']'))
            --depth;
        if (depth > deepest_json)
            return false;
    }
    return true;
}

JsonFile parsedJson(const QString& path, const QByteArray& bytes)
{
    if (!isShallow(bytes)) {
        throw UsageError(QStringLiteral("%1: brackets stand in one another more than %2 deep")
                             .arg(shownPath(path))
                             .arg(deepest_json));
    }
    const std::string text = bytes.toStdString();
    JsonFile json{shownPath(path), nlohmann::json(), findJsonLines(text)};
    if (!json.lines.problem.empty()) {
        throw UsageError(QStringLiteral("%1:%2: %3")
                             .arg(json.path)
                             .arg(json.lines.problem_line)
                             .arg(QString::fromStdString(json.lines.problem)));
    }
    json.root = nlohmann::json::parse(text);
    return json;
}

StoredFile readJsonFile(const QString& path, const QByteArray& bytes)
{
    const JsonFile json = parsedJson(path, bytes);
    StoredFile file;
    file.bytes = bytes;
    if (json.root.is_object() && json.root.contains("tovik_iot")) {
        file.kind = StoredKind::record_json;
        file.record = recordFromJson(json);
        file.hints = formatFromJson(json);
        return file;
    }
    if (!json.root.is_object() || !json.root.contains("service")) {
        json.fail(nlohmann::json::json_pointer(),
                  QStringLiteral("neither the member \"tovik_iot\" (a record) nor \"service\" (a "
                                 "configuration of a cloud driver) is there"));
    }
    if (isStandard(path)) {
        json.fail(nlohmann::json::json_pointer(),
                  QStringLiteral("a configuration with \"service\" is read from a file only, since "
                                 "it may name other files beside it"));
    }
    file.kind = StoredKind::configuration;
    const RecordOfConfig made = recordOfConfig(path);
    file.record = made.record;
    file.notes = made.notes;
    file.conversion_notes = made.conversion_notes;
    return file;
}

StoredFile readStreamFile(const QString& path, const QByteArray& bytes, const FormatHints& hints,
                          const QString& which_format)
{
    const DetectedStream detected = detectStored(bytes, hints);
    if (!detected.ambiguity.isEmpty()) {
        throw UsageError(
            QStringLiteral("%1 can be read in several formats, with different results. %2:\n  %3")
                .arg(shownPath(path), which_format, detected.ambiguity));
    }
    StoredFile file;
    file.record = detected.reading.record;
    file.problems = detected.reading.problems;
    file.bytes = bytes;
    file.format = detected.format;
    file.versions = detected.versions;
    file.hints = {detected.format.form, detected.versions, detected.format.big_endian,
                  detected.format.single_precision};
    return file;
}

} // namespace

bool StoredFile::isSecret() const
{
    return !problems.isEmpty() || !record.password.isEmpty() ||
           !QUrl(record.host).password().isEmpty();
}

QString shownPath(const QString& path)
{
    return isStandard(path) ? QStringLiteral("standard input") : printable(path);
}

StoredFile readStoredFile(const QString& path, std::optional<bool> as_json,
                          const FormatHints& hints, const QString& which_format)
{
    const QByteArray bytes = readBytes(path);
    if (as_json.value_or(looksLikeJson(bytes)))
        return readJsonFile(path, bytes);
    return readStreamFile(path, bytes, hints, which_format);
}

void writeStoredFile(const QString& path, const QByteArray& bytes, bool is_secret)
{
    if (!isStandard(path)) {
        saveFile(path, bytes, is_secret);
        return;
    }
    QFile file;
    const bool is_done = file.open(stdout, QIODevice::WriteOnly) &&
                         file.write(bytes) == bytes.size() && file.flush();
    if (!is_done) {
        throw UsageError(
            QStringLiteral("cannot write the standard output: %1").arg(file.errorString()));
    }
}

} // namespace tovik_host
