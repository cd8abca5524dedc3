#include "tools/host/stored/detection.h"

#include <QCryptographicHash>
#include <QStringList>

#include <algorithm>

namespace tovik_host::stored {

namespace {

/// A result, and the formats that give it, which differ in their versions only.
struct Fit
{
    Format format; ///< The likeliest one.
    Versions versions;
    QByteArray content; ///< A hash of it.
};

/// Adds the format to a fit that is like it, if there is one.
bool join(std::vector<Fit>& fits, const Format& format, const QByteArray& content)
{
    for (Fit& fit : fits) {
        const bool is_alike =
            std::all_of(choices.begin(), choices.end(), [&](const Choice& choice) {
                return fit.format.*choice.setting == format.*choice.setting;
            });
        if (!is_alike || fit.content != content)
            continue;
        fit.versions.first = std::min(fit.versions.first, format.version);
        fit.versions.last = std::max(fit.versions.last, format.version);
        return true;
    }
    return false;
}

QString ambiguityOf(const std::vector<Fit>& fits)
{
    QStringList differing;
    for (const Fit& fit : fits) {
        if (!differing.isEmpty() && fit.content == fits.front().content)
            continue;
        QString options = QStringLiteral("--form %1 --stream-version %2 --byte-order %3 "
                                         "--float-precision %4");
        differing << options.arg(
            choices[0].word(fit.format.is_variant), QString::number(fit.format.version),
            choices[1].word(fit.format.big_endian), choices[2].word(fit.format.single_precision));
    }
    return differing.size() > 1 ? differing.join(QStringLiteral("\n  ")) : QString();
}

Detected detectDamaged(const QByteArray& bytes, const Hints& hints)
{
    std::optional<Reading> best;
    std::pair<bool, int> best_rank;
    std::vector<Fit> fits;
    for (const Format& format : possibleFormats(hints)) {
        Reading next = readDamaged(bytes, format);
        const std::pair<bool, int> rank = {format.is_variant && next.reach > 0, next.reach};
        if (!best || rank > best_rank) {
            fits = {{format, {format.version, format.version}, QByteArray()}};
            best = std::move(next);
            best_rank = rank;
        } else if (rank == best_rank) {
            join(fits, format, QByteArray());
        }
    }
    return {*best, fits.front().format, fits.front().versions, QString()};
}

} // namespace

Detected detect(const QByteArray& bytes, const Hints& hints)
{
    std::vector<Fit> fits;
    PropertyTovikIot first;
    for (const Format& format : possibleFormats(hints)) {
        const std::optional<PropertyTovikIot> record = readWhole(bytes, format);
        if (!record)
            continue;
        if (fits.empty())
            first = *record;
        const QByteArray content =
            QCryptographicHash::hash(contentOf(*record), QCryptographicHash::Sha256);
        if (!join(fits, format, content))
            fits.push_back({format, {format.version, format.version}, content});
    }
    if (fits.empty())
        return detectDamaged(bytes, hints);
    return {
        {{first}, {}, bytes.size()}, fits.front().format, fits.front().versions, ambiguityOf(fits)};
}

} // namespace tovik_host::stored
