#ifndef TOOLS_HOST_STORED_DETECTION_H
#define TOOLS_HOST_STORED_DETECTION_H

#include "tools/host/stored_reader.h"

namespace tovik_host {

/// What a stream's bytes hold, and in which format.
struct DetectedStream
{
    StoredReading reading;
    StoredFormat format;   ///< One that fits.
    VersionRange versions; ///< All that fit, from which the bytes do not tell the right one.
    /// Why the format cannot be told; the rest says nothing then.
    QString ambiguity;
};

/// Reads the bytes in every format that the hints allow. A format fits if it has no problem; if
/// none has none, the one that comes furthest before its first problem is taken.
///
/// A stream says nothing about its format, but most formats fail on it soon. Where several fit with
/// different results, there is an ambiguity; where the result is the same, none.
DetectedStream detectStored(const QByteArray& bytes, const FormatHints& hints);

/// The formats with different bytes that the hints allow, the most likely ones first.
QVector<StoredFormat> possibleFormats(const FormatHints& hints);
/// The versions among \a hints that give the same bytes as the format.
VersionRange versionsOfLayout(const StoredFormat& format, const FormatHints& hints);

} // namespace tovik_host

#endif
