#ifndef TOOLS_HOST_DEVICE_COMMANDS_H
#define TOOLS_HOST_DEVICE_COMMANDS_H

#include "tools/host/config/options.h"

namespace tovik_host {

/// \file
/// The commands for a device on a link. They return the exit code and throw UsageError.

/// Reads items once and prints their values.
int runDeviceRead(const config::CommonOptions& common, const config::ReadOptions& options);
/// Writes one value.
int runDeviceWrite(const config::CommonOptions& common, const config::WriteOptions& options);
/// Reads items again and again and shows what changes, until a signal or the end of the time.
int runDeviceWatch(const config::CommonOptions& common, const config::WatchOptions& options);
/// Sends a frame as it is and prints the answer.
int runDeviceRaw(const config::CommonOptions& common, const config::RawOptions& options);

} // namespace tovik_host

#endif
