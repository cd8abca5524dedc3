#include "tools/service/atomic_file.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace tovik_service {

void writeAtomically(const std::string& file, const std::string& text)
{
    const std::string temporary = file + "." + std::to_string(::getpid()) + ".tmp";
    std::ofstream stream(temporary, std::ios::binary | std::ios::trunc);
    stream << text;
    stream.close();
    if (!stream || std::rename(temporary.c_str(), file.c_str()) != 0) {
        const std::string reason = std::generic_category().message(errno);
        std::remove(temporary.c_str());
        throw std::runtime_error("cannot write " + file + ": " + reason);
    }
}

} // namespace tovik_service
