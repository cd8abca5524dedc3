#ifndef TOOLS_HOST_CONFIG_DEVICE_LIMITS_H
#define TOOLS_HOST_CONFIG_DEVICE_LIMITS_H

/// \file
/// The largest numbers that options and configurations of devices may have; times in milliseconds.
namespace tovik_host::config::limits {

const int request_delay = 60000;
const int response_timeout = 600000;
const int retries = 100;
const int station = 65535;
const int length = 65535;

} // namespace tovik_host::config::limits

#endif
