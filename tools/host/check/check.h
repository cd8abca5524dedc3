#ifndef TOOLS_HOST_CHECK_CHECK_H
#define TOOLS_HOST_CHECK_CHECK_H

#include "tools/host/config/config.h"
#include "tools/host/terminal/context.h"

namespace tovik_host::check {

/// Walks the way that a value takes from the service to a host, tells each step, and ends with a
/// verdict; without a configuration as far as no account is needed. Returns the exit code; throws
/// UsageError.
int runCheck(const config::CommonOptions& common, const QStringList& items);
/// The same from a device to a host.
/// \param addresses as for driver::deviceConfig()
int runLinkCheck(const config::CommonOptions& common, const QStringList& addresses);

/// Why nothing comes from the service at \a url, in one line: what a check finds between here and
/// its first words; empty: the way is free. Asks nobody to log in. \param timeout in seconds
QString causeOfSilence(terminal::Context& context, const QString& url, double timeout);
/// Says \a cause, if there is one, and the command to go on with, if there is one.
void advise(terminal::Context& context, const QString& cause, const QString& next);
/// The check that goes on where a command with these options has failed.
QString checkCommand(const config::CommonOptions& common);

} // namespace tovik_host::check

#endif
