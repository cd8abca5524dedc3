#ifndef TOOLS_HOST_STORED_CONVERT_H
#define TOOLS_HOST_STORED_CONVERT_H

#include "tools/host/stored/format.h"

/// \file
/// The commands for stored configurations.
namespace tovik_host::stored {

struct Options
{
    QString input;
    QString output = QString();
    std::optional<bool> from_json = std::nullopt;
    std::optional<bool> to_json = std::nullopt;
    Hints format = Hints(); ///< Of the output if that is a stream, else of the input.
    bool force = false;
    bool salvage = false;
    bool json = false;
    bool show_password = false;
};

/// Run the commands; return what the program tells the shell. Throw UsageError.
int convert(const Options& options);
int show(const Options& options);

} // namespace tovik_host::stored

#endif
