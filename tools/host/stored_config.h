#ifndef TOOLS_HOST_STORED_CONFIG_H
#define TOOLS_HOST_STORED_CONFIG_H

#include "tools/host/stored_record.h"

#include <QStringList>

namespace tovik_host {

/// A record made of what a configuration of `watch` says, and what it does not.
struct RecordOfConfig
{
    StoredRecord record;
    QStringList notes;            ///< Complete lines for the user.
    QStringList conversion_notes; ///< The same, when the record is to be stored.
};

/// Reads the configuration file \a path. Throws UsageError as loadConfig() does.
RecordOfConfig recordOfConfig(const QString& path);

} // namespace tovik_host

#endif
