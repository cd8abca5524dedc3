#ifndef TOOLS_FILE_WHOLE_FILE_H
#define TOOLS_FILE_WHOLE_FILE_H

#include <string>

namespace tovik_file {

enum class Readers
{
    as_before,
    owner
};

/// Writes \a bytes to \a path: to a file beside it first, which takes its place once it is on the
/// disk. Whatever happens, the power cut included, there is the old file or the new one, whole. A
/// link stays, and what it leads to is replaced. Throws std::system_error; the file is then as it
/// was.
///
/// \param readers whether the file has the mode of the one that it replaces, or nobody but the
/// owner may read it, not for a moment
void writeWholeFile(const std::string& path, const std::string& bytes,
                    Readers readers = Readers::as_before);

} // namespace tovik_file

#endif
