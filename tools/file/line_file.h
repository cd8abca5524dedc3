#ifndef TOOLS_FILE_LINE_FILE_H
#define TOOLS_FILE_LINE_FILE_H

#include <string>

namespace tovik_file {

/// A file that lines are appended to. On a full disk some are missing, the rest comes once there is
/// room. For one thread at a time.
class LineFile
{
public:
    /// Throws std::system_error.
    explicit LineFile(const std::string& path);
    LineFile(const LineFile&) = delete;
    LineFile& operator=(const LineFile&) = delete;
    ~LineFile();

    /// Appends whole lines.
    /// \return 0, or, for the first lines that cannot be written, the errno that says why; those
    /// that are missing after them are no news
    int append(const std::string& lines);

private:
    int descriptor_;
    int error_ = 0;       ///< Of the latest lines.
    bool is_cut_ = false; ///< The file ends in the middle of a line.
};

} // namespace tovik_file

#endif
