#include "tools/host/stored/format.h"

#include <QDataStream>
#include <QRegularExpression>

#include <algorithm>
#include <iterator>

namespace tovik_host::stored {

namespace {

struct Release
{
    int major;
    int minor;
    int version;

    QString text() const { return QStringLiteral("%1.%2").arg(major).arg(minor); }
};

/// The version of each release of Qt.
const Release releases[] = {
    {4, 0, 7},   {4, 1, 7},   {4, 2, 8},   {4, 3, 9},   {4, 4, 10}, {4, 5, 11},  {4, 6, 12},
    {4, 7, 12},  {4, 8, 12},  {5, 0, 13},  {5, 1, 14},  {5, 2, 15}, {5, 3, 15},  {5, 4, 16},
    {5, 5, 16},  {5, 6, 17},  {5, 7, 17},  {5, 8, 17},  {5, 9, 17}, {5, 10, 17}, {5, 11, 17},
    {5, 12, 18}, {5, 13, 19}, {5, 14, 19}, {5, 15, 19},
};

static_assert(QDataStream::Qt_4_0 == oldest_version && QDataStream::Qt_4_5 == 11 &&
                  QDataStream::Qt_5_4 == 16 && QDataStream::Qt_5_15 == 19,
              "the versions of Qt");

bool isPossible(const Format& format, const Hints& hints)
{
    const bool is_chosen = std::all_of(choices.begin(), choices.end(), [&](const Choice& c) {
        return (hints.*c.hint).value_or(format.*c.setting) == format.*c.setting;
    });
    // Where the precision says nothing, the usual one stands for both.
    const bool is_repeated =
        format.single_precision && !hints.single_precision && format.version < QDataStream::Qt_4_6;
    return is_chosen && !is_repeated &&
           hints.versions.value_or(Versions()).contains(format.version);
}

} // namespace

const std::array<Choice, 3> choices = {{
    {"form", "variant", "record", &Format::is_variant, &Hints::is_variant},
    {"byte_order", "big", "little", &Format::big_endian, &Hints::big_endian},
    {"float_precision", "single", "double", &Format::single_precision, &Hints::single_precision},
}};

int newestVersion()
{
    return QDataStream::Qt_DefaultCompiledVersion;
}

std::vector<Format> possibleFormats(const Hints& hints)
{
    std::vector<int> versions = {QDataStream::Qt_4_8};
    for (int version = newestVersion(); version >= oldest_version; --version) {
        if (version != versions.front())
            versions.push_back(version);
    }
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
    bool is_number = false;
    const int number = text.toInt(&is_number);
    if (is_number)
        return Versions().contains(number) ? std::optional<int>(number) : std::nullopt;
    static const QRegularExpression name(QStringLiteral("^(?:Qt[_ ]?)?([45])[_.](\\d{1,2})$"));
    const QRegularExpressionMatch match = name.match(text);
    for (const Release& release : releases) {
        if (match.hasMatch() && match.captured(1).toInt() == release.major &&
            match.captured(2).toInt() == release.minor)
            return release.version;
    }
    return std::nullopt;
}

QString rangeText(const Versions& range)
{
    if (range.isOne())
        return QString::number(range.first);
    return QStringLiteral("%1-%2").arg(range.first).arg(range.last);
}

std::optional<Versions> rangeOf(const QString& text)
{
    const int dash = text.indexOf(QLatin1Char('-'));
    const std::optional<int> first = versionOf(text.left(dash));
    const std::optional<int> last = dash < 0 ? first : versionOf(text.mid(dash + 1));
    if (!first || !last || *first > *last)
        return std::nullopt;
    return Versions{*first, *last};
}

QString rangeInWords(const Versions& range)
{
    const auto is_in = [&](const Release& release) { return range.contains(release.version); };
    const Release* oldest = std::find_if(std::begin(releases), std::end(releases), is_in);
    const Release* newest = oldest;
    while (newest + 1 != std::end(releases) && is_in(newest[1]))
        ++newest;
    QString words = QString::number(range.first);
    if (!range.isOne())
        words += QStringLiteral(" to %1").arg(range.last);
    words += QStringLiteral(" (Qt ") + oldest->text();
    if (newest != oldest)
        words += QStringLiteral(" to ") + newest->text();
    return words + QLatin1Char(')');
}

} // namespace tovik_host::stored
