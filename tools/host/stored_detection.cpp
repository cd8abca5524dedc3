#include "tools/host/stored_detection.h"

#include "tools/host/stored_writer.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QStringList>

#include <algorithm>

namespace tovik_host {

namespace {

/// The last versions of each layout, likely ones first: Qt 4.8's, then Qt 5's.
const int layout_versions[] = {QDataStream::Qt_4_8, QDataStream::Qt_5_15, QDataStream::Qt_4_5,
                               QDataStream::Qt_4_1};

/// Bytes of a text that a file may well have been cut in.
const int likely_length = 4096;

VersionRange allowedVersions(const FormatHints& hints)
{
    return hints.versions.value_or(VersionRange());
}

struct Candidate
{
    StoredFormat format;
    StoredReading reading;
    int size;           ///< Of all bytes.
    QByteArray content; ///< Of a clean one that others tie with.

    /// Whether it begins as a variant: hardly any record's first bytes look like that.
    bool beginsAsVariant() const
    {
        return format.form == StoredForm::variant &&
               (reading.clean() || reading.problems.first().offset > 0);
    }
    /// How far it comes. One that ends in a value of likely length comes to the end: another that
    /// takes the last bytes for something else would come a little further.
    int reach() const
    {
        if (reading.clean())
            return size;
        const StoredProblem& problem = reading.problems.first();
        return problem.missing > 0 && problem.missing <= likely_length ? size : problem.offset;
    }
    /// Whether this fits better than \a other.
    bool beats(const Candidate& other) const
    {
        if (reading.clean() != other.reading.clean())
            return reading.clean();
        if (!reading.clean() && beginsAsVariant() != other.beginsAsVariant())
            return beginsAsVariant();
        return reach() > other.reach();
    }
};

/// What the record holds, to be compared: by its bytes in one format for all.
QByteArray contentOf(const StoredRecord& record)
{
    StoredFormat format;
    format.version = newestVersion();
    return QCryptographicHash::hash(writeStored(record, format).bytes, QCryptographicHash::Sha256);
}

QString inWords(const Candidate& candidate, const FormatHints& hints)
{
    const StoredFormat& format = candidate.format;
    return QStringLiteral("--form %1 --stream-version %2 --byte-order %3 --float-precision %4")
        .arg(formName(format.form), QString::number(versionsOfLayout(format, hints).last),
             orderName(format.big_endian), precisionName(format.single_precision));
}

/// Keeps what a tie is told by. Records are large, and all but the first one's are dropped.
void append(QVector<Candidate>* best, Candidate&& candidate)
{
    if (!best->isEmpty()) {
        Candidate& first = best->first();
        if (first.reading.clean() && first.content.isEmpty())
            first.content = contentOf(first.reading.record);
        if (candidate.reading.clean())
            candidate.content = contentOf(candidate.reading.record);
        candidate.reading.record = StoredRecord();
    }
    best->append(std::move(candidate));
}

/// The candidates that nothing beats, in the order of the formats; the first one with its record.
QVector<Candidate> bestCandidates(const QByteArray& bytes, const FormatHints& hints)
{
    QVector<Candidate> best;
    for (const StoredFormat& format : possibleFormats(hints)) {
        Candidate candidate = {format, readStored(bytes, format), bytes.size(), QByteArray()};
        if (!best.isEmpty() && best.first().beats(candidate))
            continue;
        if (!best.isEmpty() && candidate.beats(best.first()))
            best.clear();
        append(&best, std::move(candidate));
    }
    return best;
}

/// The formats that differ in their bytes, the most likely ones first.
QVector<StoredFormat> allLayouts()
{
    QVector<StoredFormat> layouts;
    for (const bool single_precision : {false, true}) {
        for (const StoredForm form : {StoredForm::variant, StoredForm::record}) {
            for (const bool big_endian : {true, false}) {
                for (const int version : layout_versions)
                    layouts.append({form, version, big_endian, single_precision});
            }
        }
    }
    return layouts;
}

void join(VersionRange* range, const VersionRange& other)
{
    range->first = std::min(range->first, other.first);
    range->last = std::max(range->last, other.last);
}

} // namespace

QVector<StoredFormat> possibleFormats(const FormatHints& hints)
{
    QVector<StoredFormat> formats;
    for (const StoredFormat& layout : allLayouts()) {
        const VersionRange versions = versionsOfLayout(layout, hints);
        // Without a precision the double one stands for both.
        const bool is_repeated =
            layout.single_precision && !hints.single_precision && !layout.hasPrecision();
        const bool fits =
            hints.form.value_or(layout.form) == layout.form &&
            hints.big_endian.value_or(layout.big_endian) == layout.big_endian &&
            hints.single_precision.value_or(layout.single_precision) == layout.single_precision;
        if (!fits || is_repeated || versions.first > versions.last)
            continue;
        formats.append(layout);
        formats.last().version = versions.last;
    }
    return formats;
}

VersionRange versionsOfLayout(const StoredFormat& format, const FormatHints& hints)
{
    const VersionRange allowed = allowedVersions(hints);
    VersionRange range = {newestVersion(), 0};
    for (int version = allowed.first; version <= allowed.last; ++version) {
        StoredFormat other = format;
        other.version = version;
        if (format.sameLayout(other))
            join(&range, {version, version});
    }
    return range;
}

DetectedStream detectStored(const QByteArray& bytes, const FormatHints& hints)
{
    QVector<Candidate> best = bestCandidates(bytes, hints);
    const Candidate& first = best.first();
    const bool is_clean = first.reading.clean();
    DetectedStream detected = {std::move(best.first().reading), first.format,
                               versionsOfLayout(first.format, hints), QString()};
    QStringList differing = {inWords(first, hints)};
    for (const Candidate& candidate : best) {
        if (is_clean && candidate.content != first.content)
            differing << inWords(candidate, hints);
        else if (candidate.format.single_precision == first.format.single_precision &&
                 candidate.format.form == first.format.form &&
                 candidate.format.big_endian == first.format.big_endian)
            join(&detected.versions, versionsOfLayout(candidate.format, hints));
    }
    if (differing.size() > 1)
        detected.ambiguity = differing.join(QStringLiteral("\n  "));
    return detected;
}

} // namespace tovik_host
