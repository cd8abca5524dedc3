#include "tools/host/stored/stream.h"

#include "tools/host/terminal/exit_code.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace tovik_host::stored {

namespace {

/// The releases of Qt with each version, from version 1 on.
const char releases[] = "1.0|2.0|2.1 2.2 2.3|3.0|3.1 3.2|3.3|4.0 4.1|4.2|4.3|4.4|4.5|4.6 4.7 4.8|"
                        "5.0|5.1|5.2 5.3|5.4 5.5|5.6 5.7 5.8 5.9 5.10 5.11|5.12|5.13 5.14 5.15";

QStringList releasesOf(int version)
{
    const QString of_version =
        QString::fromLatin1(releases).section(u'|', version - 1, version - 1);
    return of_version.split(u' ');
}

bool isPossible(const Format& format, const Hints& hints)
{
    const bool is_chosen = std::all_of(choices.begin(), choices.end(), [&](const Choice& c) {
        return (hints.*c.hint).value_or(format.*c.setting) == format.*c.setting;
    });
    // Where the precision says nothing, the usual one stands for both.
    const bool is_repeated =
        format.single_precision && !hints.single_precision && format.version < QDataStream::Qt_4_6;
    // Variants of a class are younger than its first versions.
    const bool has_form = !format.is_variant || format.version >= QDataStream::Qt_4_0;
    return is_chosen && !is_repeated && has_form;
}

} // namespace

const std::array<Choice, 3> choices = {{
    {"form", "variant", "record", &Format::is_variant, &Hints::is_variant},
    {"byte_order", "big", "little", &Format::big_endian, &Hints::big_endian},
    {"float_precision", "single", "double", &Format::single_precision, &Hints::single_precision},
}};

std::vector<Format> possibleFormats(const Hints& hints)
{
    const Versions range = hints.versions.value_or(Versions());
    std::vector<int> versions;
    for (int version = range.last; version >= range.first; --version)
        versions.push_back(version);
    std::stable_partition(versions.begin(), versions.end(),
                          [](int version) { return version == QDataStream::Qt_4_8; });
    std::vector<Format> formats;
    for (const bool single_precision : {false, true}) {
        for (const bool is_variant : {true, false}) {
            for (const bool big_endian : {true, false}) {
                for (const int version : versions) {
                    const Format format = {is_variant, version, big_endian, single_precision};
                    if (isPossible(format, hints))
                        formats.push_back(format);
                }
            }
        }
    }
    if (formats.empty()) {
        throw terminal::UsageError(
            u"a stream of a version before 7 holds no variant of the record"_s);
    }
    return formats;
}

Hints merged(const Hints& first, const Hints& second)
{
    Hints hints = first;
    if (!hints.versions)
        hints.versions = second.versions;
    for (const Choice& choice : choices) {
        if (!(hints.*choice.hint))
            hints.*choice.hint = second.*choice.hint;
    }
    return hints;
}

std::optional<int> versionOf(const QString& text)
{
    static const QRegularExpression start(u"^Qt[_ ]?"_s);
    const QString name = QString(text).remove(start).replace(u'_', u'.');
    for (int version = all_versions.first; version <= all_versions.last; ++version) {
        if (text == QString::number(version) || releasesOf(version).contains(name))
            return version;
    }
    return std::nullopt;
}

QString rangeText(const Versions& range)
{
    if (range.first == range.last)
        return QString::number(range.first);
    return u"%1-%2"_s.arg(range.first).arg(range.last);
}

std::optional<Versions> rangeOf(const QString& text)
{
    const int dash = text.indexOf(u'-');
    const std::optional<int> first = versionOf(text.left(dash));
    const std::optional<int> last = dash < 0 ? first : versionOf(text.mid(dash + 1));
    if (!first || !last || *first > *last)
        return std::nullopt;
    return Versions{*first, *last};
}

QString rangeInWords(const Versions& range)
{
    const auto words = [](const QString& first, const QString& last) {
        return first == last ? first : u"%1 to %2"_s.arg(first, last);
    };
    return u"%1 (Qt %2)"_s.arg(
        words(QString::number(range.first), QString::number(range.last)),
        words(releasesOf(range.first).first(), releasesOf(range.last).last()));
}

} // namespace tovik_host::stored
