#ifndef TOOLS_SERVICE_ATOMIC_FILE_H
#define TOOLS_SERVICE_ATOMIC_FILE_H

#include <string>

namespace tovik_service {

/// Writes a file so that others see it complete or not at all; throws std::runtime_error.
void writeAtomically(const std::string& file, const std::string& text);

} // namespace tovik_service

#endif
