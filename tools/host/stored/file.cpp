#include "tools/host/stored/file.h"

#include "tools/host/config/config_file.h"
#include "tools/host/stored/detection.h"
#include "tools/host/stored/json.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/output.h"
#include "tools/host/terminal/text_width.h"

#include <QFile>
#include <QUrl>

#include <cstdio>
#include <unistd.h>

namespace tovik_host::stored {

namespace {

const qint64 largest_file = 4 << 20;
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
        throw terminal::UsageError(
            QStringLiteral("cannot read %1: %2").arg(shownPath(path), file.errorString()));
    }
    if (bytes.size() > largest_file) {
        throw terminal::UsageError(
            QStringLiteral("%1 is larger than %2 MiB, which no configuration is")
                .arg(shownPath(path))
                .arg(largest_file / 1024 / 1024));
    }
    if (bytes.isEmpty())
        throw terminal::UsageError(QStringLiteral("%1 is empty").arg(shownPath(path)));
    return bytes;
}

bool looksLikeJson(const QByteArray& bytes)
{
    const QByteArray text = bytes.startsWith("\xEF\xBB\xBF") ? bytes.mid(3) : bytes;
    return text.trimmed().startsWith('{');
}

config::JsonFile parsedJson(const QString& path, const QByteArray& bytes)
{
    const auto limit_depth = [&](int depth, nlohmann::json::parse_event_t, const nlohmann::json&) {
        if (depth > deepest_json) {
            throw terminal::UsageError(
                QStringLiteral("%1: brackets stand in one another more than %2 deep")
                    .arg(shownPath(path))
                    .arg(deepest_json));
        }
        return true;
    };
    const std::string text = bytes.toStdString();
    config::JsonFile json{shownPath(path), nlohmann::json::parse(text, limit_depth, false),
                          config::JsonLines()};
    json.lines = config::findJsonLines(text);
    if (!json.lines.problem.empty()) {
        throw terminal::UsageError(QStringLiteral("%1:%2: %3")
                                       .arg(json.path)
                                       .arg(json.lines.problem_line)
                                       .arg(QString::fromStdString(json.lines.problem)));
    }
    return json;
}

PropertyTovikIotDataItem itemOf(const config::ItemConfig& config)
{
    PropertyTovikIotDataItem item;
    item.name = config.name;
    item.dataitem_id = config.id;
    item.type = QString::fromLatin1(config.type->name);
    if (config.length > 0)
        item.length = config.length;
    return item;
}

/// The record of what a configuration of `watch` says, and notes of what it does not.
File fileOfConfiguration(const QString& path, bool has_error_handling)
{
    const QString shown = shownPath(path);
    const config::LoadedConfig loaded = config::loadConfig(path);
    const config::ServiceConfig& service = loaded.config.service;
    File file = {File::configuration, {}};
    file.notes = loaded.warnings;
    PropertyTovikIot& record = file.record.property;
    if (!service.url.isEmpty()) {
        record.host = service.url;
    } else {
        file.notes << QStringLiteral("%1 has no service.url: the record has %2 there, which is no "
                                     "service")
                          .arg(shown, record.host);
    }
    if (service.password.isEmpty()) {
        file.notes << QStringLiteral("%1 gives no password: the record has an empty one, with "
                                     "which no login succeeds")
                          .arg(shown);
    }
    record.project = service.project;
    record.email = service.email;
    record.password = service.password;
    for (const config::ItemConfig& config : loaded.config.items)
        record.dataitems << itemOf(config);
    file.conversion_notes << QStringLiteral("%1 has no groups, no cached values, no status, alert, "
                                            "time or marks of items: the record has its defaults "
                                            "there")
                                 .arg(shown);
    if (has_error_handling) {
        file.notes << QStringLiteral("%1: error_handling is not part of the record and is left "
                                     "out: a host sets it as tovik_iot_err_... keys of the link")
                          .arg(shown);
    }
    return file;
}

File readJsonFile(const QString& path, const QByteArray& bytes)
{
    const config::JsonFile json = parsedJson(path, bytes);
    if (json.root.is_object() && json.root.contains("tovik_iot"))
        return {File::record_json, {recordFromJson(json)}, {}, bytes.size(), formatFromJson(json)};
    if (!json.root.is_object() || !json.root.contains("service")) {
        json.fail(nlohmann::json::json_pointer(),
                  QStringLiteral("neither the member \"tovik_iot\" (a record) nor \"service\" "
                                 "(a configuration of a cloud driver) is there"));
    }
    if (isStandard(path)) {
        json.fail(nlohmann::json::json_pointer(),
                  QStringLiteral("a configuration with \"service\" is read from a file only, "
                                 "since it may name other files beside it"));
    }
    return fileOfConfiguration(path, json.root.contains("error_handling"));
}

File readStreamFile(const QString& path, const QByteArray& bytes, const Hints& hints,
                    const QString& which_format)
{
    const Detected detected = detect(bytes, hints);
    if (!detected.ambiguity.isEmpty()) {
        throw terminal::UsageError(
            QStringLiteral("%1 can be read in several formats, with different results. %2:\n  %3")
                .arg(shownPath(path), which_format, detected.ambiguity));
    }
    Hints format;
    format.versions = detected.versions;
    for (const Choice& choice : choices)
        format.*choice.hint = detected.format.*choice.setting;
    return {File::stream, detected.reading.record, detected.reading.problems, bytes.size(), format};
}

} // namespace

bool File::isSecret() const
{
    return !problems.isEmpty() || !record.property.password.isEmpty() ||
           !QUrl(record.property.host).password().isEmpty();
}

QString shownPath(const QString& path)
{
    return isStandard(path) ? QStringLiteral("standard input") : terminal::printable(path);
}

File readFile(const QString& path, std::optional<bool> as_json, const Hints& hints,
              const QString& which_format)
{
    const QByteArray bytes = readBytes(path);
    if (as_json.value_or(looksLikeJson(bytes)))
        return readJsonFile(path, bytes);
    return readStreamFile(path, bytes, hints, which_format);
}

void writeFile(const QString& path, const QByteArray& bytes, bool is_secret)
{
    if (!isStandard(path)) {
        terminal::saveFile(path, bytes, is_secret);
        return;
    }
    QFile file;
    const bool is_done = file.open(stdout, QIODevice::WriteOnly) &&
                         file.write(bytes) == bytes.size() && file.flush();
    if (!is_done) {
        throw terminal::UsageError(
            QStringLiteral("cannot write the standard output: %1").arg(file.errorString()));
    }
}

void report(const QString& line)
{
    terminal::Output(STDERR_FILENO).line(QStringLiteral("tovik-host: ") + line);
}

void report(const File& file, const QString& path)
{
    for (const QString& note : file.notes)
        report(QStringLiteral("warning: ") + note);
    for (const Problem& problem : file.problems) {
        const QString member =
            problem.member.isEmpty() ? QString() : problem.member + QStringLiteral(": ");
        report(QStringLiteral("%1: byte %2: %3%4")
                   .arg(shownPath(path), QString::number(problem.offset), member, problem.text));
    }
}

} // namespace tovik_host::stored
