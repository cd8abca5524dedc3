#ifndef TOOLS_HOST_STORED_WRITER_H
#define TOOLS_HOST_STORED_WRITER_H

#include "tools/host/stored_format.h"
#include "tools/host/stored_record.h"

#include <QByteArray>
#include <QString>

namespace tovik_host {

/// A record's bytes, or what of it the format cannot hold.
struct StoredWriting
{
    QByteArray bytes;
    QString problem;

    bool ok() const { return problem.isEmpty(); }
};

/// Writes the record as `QDataStream` does, and nothing that readStored() would not give back.
StoredWriting writeStored(const StoredRecord& record, const StoredFormat& format);

} // namespace tovik_host

#endif
