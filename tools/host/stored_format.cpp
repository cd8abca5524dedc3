#include "tools/host/stored_format.h"

#include <QDataStream>
#include <QRegularExpression>

namespace tovik_host {

namespace {

struct Release
{
    int major;
    int minor;
    int version;
};

/// The version of each release of Qt.
const Release releases[] = {
    {4, 0, QDataStream::Qt_4_0},   {4, 1, QDataStream::Qt_4_1},   {4, 2, QDataStream::Qt_4_2},
    {4, 3, QDataStream::Qt_4_3},   {4, 4, QDataStream::Qt_4_4},   {4, 5, QDataStream::Qt_4_5},
    {4, 6, QDataStream::Qt_4_6},   {4, 7, QDataStream::Qt_4_7},   {4, 8, QDataStream::Qt_4_8},
    {5, 0, QDataStream::Qt_5_0},   {5, 1, QDataStream::Qt_5_1},   {5, 2, QDataStream::Qt_5_2},
    {5, 3, QDataStream::Qt_5_3},   {5, 4, QDataStream::Qt_5_4},   {5, 5, QDataStream::Qt_5_5},
    {5, 6, QDataStream::Qt_5_6},   {5, 7, QDataStream::Qt_5_7},   {5, 8, QDataStream::Qt_5_8},
    {5, 9, QDataStream::Qt_5_9},   {5, 10, QDataStream::Qt_5_10}, {5, 11, QDataStream::Qt_5_11},
    {5, 12, QDataStream::Qt_5_12}, {5, 13, QDataStream::Qt_5_13}, {5, 14, QDataStream::Qt_5_14},
    {5, 15, QDataStream::Qt_5_15},
};

static_assert(int(QDataStream::Qt_4_0) == oldest_version, "the number of Qt 4.0");

QString releaseText(const Release& release)
{
    return QStringLiteral("%1.%2").arg(release.major).arg(release.minor);
}

} // namespace

bool StoredFormat::hasNullFlag() const
{
    return version >= QDataStream::Qt_4_2;
}

bool StoredFormat::hasQt5Types() const
{
    return version >= QDataStream::Qt_5_0;
}

bool StoredFormat::hasPrecision() const
{
    return version >= QDataStream::Qt_4_6;
}

int StoredFormat::floatSize() const
{
    return hasPrecision() && !single_precision ? 8 : 4;
}

int StoredFormat::doubleSize() const
{
    return hasPrecision() && single_precision ? 4 : 8;
}

bool StoredFormat::sameLayout(const StoredFormat& other) const
{
    return form == other.form && big_endian == other.big_endian &&
           hasNullFlag() == other.hasNullFlag() && hasQt5Types() == other.hasQt5Types() &&
           floatSize() == other.floatSize() && doubleSize() == other.doubleSize();
}

int newestVersion()
{
    return QDataStream::Qt_DefaultCompiledVersion;
}

std::optional<int> versionOf(const QString& text)
{
    bool is_number = false;
    const int number = text.toInt(&is_number);
    if (is_number) {
        const bool exists = number >= oldest_version && number <= newestVersion();
        return exists ? std::optional<int>(number) : std::nullopt;
    }
    static const QRegularExpression name(QStringLiteral("^(?:Qt[_ ]?)?([45])[_.](\\d{1,2})$"));
    const QRegularExpressionMatch match = name.match(text);
    for (const Release& release : releases) {
        if (match.hasMatch() && match.captured(1).toInt() == release.major &&
            match.captured(2).toInt() == release.minor)
            return release.version;
    }
    return std::nullopt;
}

QString rangeText(const VersionRange& range)
{
    if (range.isOne())
        return QString::number(range.first);
    return QStringLiteral("%1-%2").arg(range.first).arg(range.last);
}

std::optional<VersionRange> rangeOf(const QString& text)
{
    const int dash = text.indexOf(QLatin1Char('-'));
    const std::optional<int> first = versionOf(text.left(dash));
    const std::optional<int> last = dash < 0 ? first : versionOf(text.mid(dash + 1));
    if (!first || !last || *first > *last)
        return std::nullopt;
    return VersionRange{*first, *last};
}

QString rangeInWords(const VersionRange& range)
{
    const Release* oldest = nullptr;
    const Release* newest = nullptr;
    for (const Release& release : releases) {
        if (!range.contains(release.version))
            continue;
        oldest = oldest ? oldest : &release;
        newest = &release;
    }
    QString words = QString::number(range.first);
    if (!range.isOne())
        words += QStringLiteral(" to %1").arg(range.last);
    words += QStringLiteral(" (Qt ") + releaseText(*oldest);
    if (newest != oldest)
        words += QStringLiteral(" to ") + releaseText(*newest);
    return words + QLatin1Char(')');
}

QString formName(StoredForm form)
{
    return form == StoredForm::variant ? QStringLiteral("variant") : QStringLiteral("record");
}

QString orderName(bool big_endian)
{
    return big_endian ? QStringLiteral("big") : QStringLiteral("little");
}

QString precisionName(bool single_precision)
{
    return single_precision ? QStringLiteral("single") : QStringLiteral("double");
}

} // namespace tovik_host
