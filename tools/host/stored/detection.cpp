#include "tools/host/stored/stream.h"

#include "tools/host/terminal/text.h"

#include <QCryptographicHash>
#include <QStringList>

#include <algorithm>

namespace tovik_host::stored {

namespace {

/// A format in which the bytes can be read, and a hash of what they hold then.
struct Fit
{
    Format format;
    QByteArray content;
};

QString optionsOf(const Format& format)
{
    return u"--form %1 --stream-version %2 --byte-order %3 --float-precision %4"_s.arg(
        choices[0].word(format.is_variant), QString::number(format.version),
        choices[1].word(format.big_endian), choices[2].word(format.single_precision));
}

/// \param fits the likeliest one first
Detected detectedOf(const Reading& reading, const std::vector<Fit>& fits)
{
    const Fit& first = fits.front();
    Versions versions = {first.format.version, first.format.version};
    QVector<QByteArray> contents;
    QStringList options;
    for (const Fit& fit : fits) {
        const bool is_alike =
            std::all_of(choices.begin(), choices.end(), [&](const Choice& choice) {
                return fit.format.*choice.setting == first.format.*choice.setting;
            });
        if (is_alike && fit.content == first.content) {
            versions.first = std::min(versions.first, fit.format.version);
            versions.last = std::max(versions.last, fit.format.version);
        }
        if (!contents.contains(fit.content)) {
            contents << fit.content;
            options << optionsOf(fit.format);
        }
    }
    const bool is_ambiguous = options.size() > 1;
    return {reading, first.format, versions, is_ambiguous ? options.join(u"\n  "_s) : QString()};
}

std::optional<Detected> detectWhole(const QByteArray& bytes, const Hints& hints)
{
    std::vector<Fit> fits;
    Reading reading;
    for (const Format& format : possibleFormats(hints)) {
        const std::optional<PropertyTovikIot> record = readWhole(bytes, format);
        if (!record)
            continue;
        if (fits.empty())
            reading.record = *record;
        fits.push_back(
            {format, QCryptographicHash::hash(contentOf(*record), QCryptographicHash::Sha256)});
    }
    return fits.empty() ? std::nullopt : std::optional<Detected>(detectedOf(reading, fits));
}

Detected detectDamaged(const QByteArray& bytes, const Hints& hints)
{
    Reading best;
    std::pair<bool, int> best_rank = {false, -1};
    std::vector<Fit> fits;
    for (const Format& format : possibleFormats(hints)) {
        const Reading next = readDamaged(bytes, format);
        const std::pair<bool, int> rank = {format.is_variant && next.reach > 0, next.reach};
        if (rank < best_rank)
            continue;
        if (rank > best_rank) {
            best = next;
            best_rank = rank;
            fits.clear();
        }
        fits.push_back({format, QByteArray()});
    }
    return detectedOf(best, fits);
}

} // namespace

Detected detect(const QByteArray& bytes, const Hints& hints)
{
    std::optional<Detected> detected = detectWhole(bytes, hints);
    if (!detected && !hints.versions && !hints.is_variant.value_or(false)) {
        Hints older = hints;
        older.versions = Versions{all_versions.first, QDataStream::Qt_4_0 - 1};
        detected = detectWhole(bytes, older);
    }
    return detected ? *detected : detectDamaged(bytes, hints);
}

} // namespace tovik_host::stored
