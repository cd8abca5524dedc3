#ifndef TOOLS_HOST_CONFIGURE_COMMAND_H
#define TOOLS_HOST_CONFIGURE_COMMAND_H

#include "tools/host/service/configure_choice.h"
#include "tools/host/service/service_place.h"

#include <QString>

namespace tovik_host {

struct ConfigureOptions
{
    QString catalogue; ///< A saved catalogue; empty: the service is asked.
    service::ItemFilter filter;
    bool interactive = false;
    QString output; ///< Empty: the standard output.
    bool force = false;
    bool with_password = false;
};

/// Makes a configuration from a catalogue. Returns the exit code; throws UsageError.
int runConfigure(const service::ServiceOptions& service, const ConfigureOptions& options);

} // namespace tovik_host

#endif
