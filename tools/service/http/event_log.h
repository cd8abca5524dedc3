#ifndef TOOLS_SERVICE_HTTP_EVENT_LOG_H
#define TOOLS_SERVICE_HTTP_EVENT_LOG_H

#include "tools/file/line_file.h"

#include <mutex>
#include <optional>
#include <string>

namespace tovik_service::http {

/// Writes one line for each noteworthy event, to stderr or a file.
/// What a full disk does not take is missing in the file, which is said on stderr.
/// Safe to use from several threads.
class EventLog
{
public:
    /// Logs to stderr if the file name is empty; throws std::runtime_error.
    EventLog(const std::string& file, bool verbose);

    /// Always written.
    void note(const std::string& text);

    /// Written on request only.
    void detail(const std::string& text);

private:
    bool verbose_;
    std::mutex mutex_;
    std::optional<tovik_file::LineFile> file_; ///< Nothing: it is stderr.
};

} // namespace tovik_service::http

#endif
