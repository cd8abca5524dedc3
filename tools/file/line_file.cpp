#include "tools/file/line_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace tovik_file {

LineFile::LineFile(const std::string& path)
    : descriptor_(::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644))
{
    if (descriptor_ < 0)
        throw std::system_error(errno, std::generic_category());
}

LineFile::~LineFile()
{
    ::close(descriptor_);
}

int LineFile::append(const std::string& lines)
{
    const std::string bytes = is_cut_ ? '\n' + lines : lines;
    std::size_t done = 0;
    int error = 0;
    while (error == 0 && done < bytes.size()) {
        const ssize_t count = ::write(descriptor_, bytes.data() + done, bytes.size() - done);
        if (count >= 0)
            done += std::size_t(count);
        else if (errno != EINTR)
            error = errno;
    }
    if (done > 0)
        is_cut_ = bytes[done - 1] != '\n';
    const bool is_news = error_ == 0;
    error_ = error;
    return is_news ? error : 0;
}

} // namespace tovik_file
