#ifndef TOOLS_HOST_STORED_READER_H
#define TOOLS_HOST_STORED_READER_H

#include "tools/host/stored_format.h"
#include "tools/host/stored_record.h"

#include <QByteArray>
#include <QString>
#include <QVector>

namespace tovik_host {

/// Something that a good stream does not have.
struct StoredProblem
{
    int offset = 0;             ///< Byte where the value begins that is wrong.
    QString member = QString(); ///< As MemberPath says it; empty before and behind the record.
    QString text = QString();
    qint64 missing = 0; ///< Bytes that the file would have to be longer; 0 when that is not it.
};

/// What a stream's bytes hold when they are read in one format.
struct StoredReading
{
    StoredRecord record;             ///< What could be read.
    QVector<StoredProblem> problems; ///< In the order of the bytes; at most \ref most_problems.
    int end = 0;                     ///< Bytes that were read.

    bool clean() const { return problems.isEmpty(); }
};

/// Problems that are kept: one that stops the reading is always among them.
const int most_problems = 20;

/// Reads a stored record, checking every count and length against the bytes there are. Takes time
/// and memory in proportion to the bytes, whatever they say.
///
/// Values that `QDataStream` never writes are problems, too, though Qt may read them: a flag that
/// is neither 0 nor 1, bytes behind the record. Reading goes on behind those.
StoredReading readStored(const QByteArray& bytes, const StoredFormat& format);

} // namespace tovik_host

#endif
