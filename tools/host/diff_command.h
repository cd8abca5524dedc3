#ifndef TOOLS_HOST_DIFF_COMMAND_H
#define TOOLS_HOST_DIFF_COMMAND_H

#include "tools/host/service/service_place.h"

#include <QString>
#include <QStringList>

namespace tovik_host {

struct DiffOptions
{
    QString before;      ///< A saved catalogue or a configuration.
    QString after;       ///< Likewise; empty: the service is asked.
    QStringList ignored; ///< Kinds of differences that do not count.
    bool json = false;
};

/// Shows what has changed in a catalogue. Returns the exit code: 0 nothing, 1 something, 2 it could
/// not be found out; throws UsageError.
int runDiff(const service::ServiceOptions& service, const DiffOptions& options);

} // namespace tovik_host

#endif
