#include "tools/host/stored/commands.h"

#include "tools/host/config/config_file.h"
#include "tools/host/stored/json.h"
#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/text.h"

#include <QFile>
#include <QUrl>

#include <cstdio>

namespace tovik_host::stored {

namespace {

const qint64 largest_file = 4 << 20;

QString shownPath(const QString& path)
{
    return path == QLatin1String("-") ? u"standard input"_s : terminal::printable(path);
}

QByteArray readBytes(const QString& path)
{
    QFile file(path);
    const bool is_open = path == QLatin1String("-") ? file.open(stdin, QIODevice::ReadOnly)
                                                    : file.open(QIODevice::ReadOnly);
    const QByteArray bytes = is_open ? file.read(largest_file + 1) : QByteArray();
    if (!is_open || file.error() != QFileDevice::NoError) {
        throw terminal::UsageError(
            u"cannot read %1: %2"_s.arg(shownPath(path), file.errorString()));
    }
    if (bytes.size() > largest_file) {
        throw terminal::UsageError(
            u"%1 is larger than %2 MiB, which no configuration is"_s.arg(shownPath(path))
                .arg(largest_file / 1024 / 1024));
    }
    if (bytes.isEmpty())
        throw terminal::UsageError(u"%1 is empty"_s.arg(shownPath(path)));
    return bytes;
}

bool looksLikeJson(const QByteArray& bytes)
{
    const QByteArray text = bytes.startsWith("\xEF\xBB\xBF") ? bytes.mid(3) : bytes;
    return text.trimmed().startsWith('{');
}

/// The record of what a configuration of `watch` says, and notes of what it does not.
void takeConfiguration(const config::LoadedConfig& loaded, File* file)
{
    const config::Account& service = loaded.config.service;
    file->reading.record = config::recordOf(service, loaded.config.items);
    file->notes = loaded.warnings;
    if (service.url.isEmpty()) {
        file->notes << u"%1 has no service.url: the record has %2 there, which is no service"_s.arg(
            file->path, file->reading.record.host);
    }
    if (service.password.isEmpty()) {
        file->notes << u"%1 gives no password: the record has an empty one, with which no login "
                       "succeeds"_s.arg(file->path);
    }
    file->conversion_notes
        << u"%1 has no groups, no cached values, no status, alert, time or marks "
           "of items: the record has its defaults there"_s.arg(file->path);
}

File readJson(const QString& path, const QByteArray& bytes)
{
    const config::JsonFile json = config::parseJson(shownPath(path), bytes);
    const config::JsonPlace root(json);
    File file = {File::record_json, json.path, bytes.size()};
    if (root.has("tovik_iot")) {
        file.reading.record = recordFromJson(json);
        file.format = formatFromJson(json);
        return file;
    }
    file.kind = File::configuration;
    if (!root.has("service")) {
        root.fail(
            u"neither the member \"tovik_iot\" (a record) nor \"service\" (a configuration of a "
            "cloud driver) is there"_s);
    }
    if (path == QLatin1String("-")) {
        root.fail(
            u"a configuration with \"service\" is read from a file only, since it may name other "
            "files beside it"_s);
    }
    takeConfiguration(config::loadConfig(path, config::Password::if_given), &file);
    if (root.has("error_handling")) {
        file.notes
            << u"%1: error_handling is not part of the record and is left out: a host sets it as "
               "tovik_iot_err_... keys of the link"_s.arg(file.path);
    }
    return file;
}

File readStream(const QString& path, const QByteArray& bytes, const Hints& hints,
                const QString& which_format)
{
    const Detected detected = detect(bytes, hints);
    if (!detected.ambiguity.isEmpty()) {
        throw terminal::UsageError(
            u"%1 can be read in several formats, with different results. %2:\n  %3"_s.arg(
                shownPath(path), which_format, detected.ambiguity));
    }
    File file = {File::stream, shownPath(path), bytes.size(), detected.reading};
    file.format.versions = detected.versions;
    for (const Choice& choice : choices)
        file.format.*choice.hint = detected.format.*choice.setting;
    return file;
}

} // namespace

bool File::isSecret() const
{
    return isDamaged() || !reading.record.password.isEmpty() ||
           !QUrl(reading.record.host).password().isEmpty();
}

void File::report(terminal::Streams& streams) const
{
    for (const QString& note : notes)
        streams.warn(note);
    for (const Problem& problem : reading.problems) {
        const QString member = problem.member.isEmpty() ? QString() : problem.member + u": "_s;
        streams.complain(u"%1: byte %2: %3%4"_s.arg(path, QString::number(problem.offset), member,
                                                    problem.text));
    }
}

File Source::read(const Hints& hints, const QString& which_format) const
{
    const QByteArray bytes = readBytes(path);
    return is_json.value_or(looksLikeJson(bytes)) ? readJson(path, bytes)
                                                  : readStream(path, bytes, hints, which_format);
}

} // namespace tovik_host::stored
