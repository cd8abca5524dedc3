#ifndef TOOLS_SERVICE_HTTP_REQUEST_LOG_H
#define TOOLS_SERVICE_HTTP_REQUEST_LOG_H

#include "tools/service/plant/json.h"

#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace tovik_service::http {

/// What is kept of a request. Nothing in it is secret.
struct RequestRecord
{
    std::uint64_t number = 0;
    double time = 0; ///< seconds since 1970
    std::string path;
    std::string item;
    std::optional<int> error_code;
    int status = 0; ///< 0 if no reply went out
    std::string fault;
    std::optional<bool> resumed; ///< the TLS session of the connection; nothing without TLS
    double milliseconds = 0;
    plant::Json body;
};

/// The last thousand requests and the counts of all. Safe to use from several threads.
class RequestLog
{
public:
    /// Numbers the record, keeps it and gives the number.
    std::uint64_t add(RequestRecord record);

    /// Records with a greater number, oldest first.
    std::vector<RequestRecord> since(std::uint64_t number) const;

    std::map<std::string, std::uint64_t> counts() const;

private:
    mutable std::mutex mutex_;
    std::uint64_t last_ = 0;
    std::deque<RequestRecord> records_;
    std::map<std::string, std::uint64_t> counts_;
};

/// A record as the control API shows it.
plant::Json toJson(const RequestRecord& record);

} // namespace tovik_service::http

#endif
