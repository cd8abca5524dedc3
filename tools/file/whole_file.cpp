#include "tools/file/whole_file.h"

#include "tools/file/write_all.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

namespace tovik_file {

namespace {

[[noreturn]] void fail(int error)
{
    throw std::system_error(error, std::generic_category());
}

int checked(int result)
{
    if (result < 0)
        fail(errno);
    return result;
}

/// Where the links of \a path lead, also if nothing is there yet.
std::filesystem::path targetOf(const std::string& path)
{
    const int most_links = 40;
    std::filesystem::path target(path);
    for (int links = 0; std::filesystem::is_symlink(target); ++links) {
        if (links == most_links)
            fail(ELOOP);
        target = target.parent_path() / std::filesystem::read_symlink(target);
    }
    return target;
}

/// A new file in the same folder; gone again unless it has taken the target's place.
class FileBeside
{
public:
    FileBeside(const std::filesystem::path& target, mode_t mode) : target_(target)
    {
        // A process that was ended may have left one of its own.
        for (int number = 0; descriptor_ < 0; ++number) {
            path_ = target.string() + '.' + std::to_string(::getpid()) + '-' +
                    std::to_string(number) + ".tmp";
            descriptor_ = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
            if (descriptor_ < 0 && errno != EEXIST)
                fail(errno);
        }
    }

    FileBeside(const FileBeside&) = delete;
    FileBeside& operator=(const FileBeside&) = delete;

    ~FileBeside()
    {
        if (descriptor_ >= 0)
            ::close(descriptor_);
        if (!path_.empty())
            ::unlink(path_.c_str());
    }

    void setMode(mode_t mode) { checked(::fchmod(descriptor_, mode)); }

    void write(const std::string& bytes)
    {
        const int error = writeAll(descriptor_, bytes).error;
        if (error != 0)
            fail(error);
    }

    void replaceTarget()
    {
        checked(::fsync(descriptor_));
        checked(::close(std::exchange(descriptor_, -1)));
        checked(std::rename(path_.c_str(), target_.c_str()));
        path_.clear();
        syncFolder();
    }

private:
    /// Without it the old name may come back with the power. The file has been replaced, whatever
    /// it says.
    void syncFolder()
    {
        const std::string folder = target_.parent_path().string();
        const int descriptor =
            ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (descriptor < 0)
            return;
        ::fsync(descriptor);
        ::close(descriptor);
    }

    std::filesystem::path target_;
    std::string path_;
    int descriptor_ = -1;
};

} // namespace

void writeWholeFile(const std::string& path, const std::string& bytes, Readers readers)
{
    const std::filesystem::path target = targetOf(path);
    const mode_t owners = 0600;
    const mode_t everybodys = 0666; // less what the process withholds
    const mode_t all_bits = 07777;
    struct stat before = {};
    const bool replaces = ::stat(target.c_str(), &before) == 0;
    if (replaces && ::access(target.c_str(), W_OK) != 0)
        fail(errno);
    FileBeside file(target, readers == Readers::owner || replaces ? owners : everybodys);
    if (replaces && readers == Readers::as_before)
        file.setMode(before.st_mode & all_bits);
    file.write(bytes);
    file.replaceTarget();
}

} // namespace tovik_file
