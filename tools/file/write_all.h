#ifndef TOOLS_FILE_WRITE_ALL_H
#define TOOLS_FILE_WRITE_ALL_H

#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <string>

namespace tovik_file {

/// What became of some bytes.
struct Written
{
    std::size_t count; ///< So many of them are written.
    int error;         ///< 0: all are; else the errno that says why not.
};

/// Writes \a bytes, in as many pieces as it takes.
inline Written writeAll(int descriptor, const std::string& bytes)
{
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = ::write(descriptor, bytes.data() + done, bytes.size() - done);
        if (count >= 0)
            done += std::size_t(count);
        else if (errno != EINTR)
            return {done, errno};
    }
    return {done, 0};
}

} // namespace tovik_file

#endif
