#ifndef TOOLS_HOST_STORED_DETECTION_H
#define TOOLS_HOST_STORED_DETECTION_H

#include "tools/host/stored/stream.h"

namespace tovik_host::stored {

/// What a stream's bytes hold, and in which format.
struct Detected
{
    Reading reading;
    Format format;     ///< One that fits.
    Versions versions; ///< All that fit, from which the bytes do not tell the right one.
    /// The formats that fit with different results, as options; empty if there is but one result.
    QString ambiguity;
};

/// Finds out how the bytes were stored, as far as the hints leave that open.
///
/// A stream says nothing about its format, so all of them are tried: the format is one in which the
/// library's operators read a record up to the last byte and write it in the same bytes again.
/// Where several do with the same result, the first one of possibleFormats() is taken, together
/// with all versions that do likewise. Where they give different results, nobody but the user can
/// tell.
///
/// If none does, the stream is damaged, and the format is the one that fits furthest: one that
/// begins as a variant of the record, which hardly any other bytes do, else the one with the most
/// bytes in front of its first problem.
Detected detect(const QByteArray& bytes, const Hints& hints);

} // namespace tovik_host::stored

#endif
