#ifndef TOOLS_CLOUD_ATOMIC_FILE_H
#define TOOLS_CLOUD_ATOMIC_FILE_H

#include <string>

namespace tovik_cloud {

/// Writes a file so that others see it complete or not at all; throws std::runtime_error.
void writeAtomically(const std::string& file, const std::string& text);

} // namespace tovik_cloud

#endif
