#include "tools/file/line_file.h"

#include "tools/file/write_all.h"

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
    const Written written = writeAll(descriptor_, bytes);
    if (written.count > 0)
        is_cut_ = bytes[written.count - 1] != '\n';
    const bool is_news = error_ == 0;
    error_ = written.error;
    return is_news ? written.error : 0;
}

} // namespace tovik_file
