#ifndef TOOLS_HOST_STORED_CONVERT_H
#define TOOLS_HOST_STORED_CONVERT_H

#include "tools/host/stored_format.h"

#include <QString>

namespace tovik_host {

struct ConvertOptions
{
    QString input;
    QString output;
    std::optional<bool> from_json;
    std::optional<bool> to_json;
    FormatHints format; ///< Of the output if that is a stream, else of the input.
    bool force = false;
    bool salvage = false;
};

struct ShowOptions
{
    QString input;
    std::optional<bool> from_json;
    FormatHints format;
    bool json = false;
    bool show_password = false;
};

/// Runs the commands; return what the program tells the shell. Throw UsageError.
int runConvert(const ConvertOptions& options);
int runShow(const ShowOptions& options);

} // namespace tovik_host

#endif
