#include "tools/service/http/request_log.h"

#include "tools/service/plant/api_path.h"

#include <utility>

namespace tovik_service::http {

namespace {

constexpr std::size_t most_records = 1000;

} // namespace

std::uint64_t RequestLog::add(RequestRecord record)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    record.number = ++last_;
    // Unknown paths share one count: a scanner must not fill the table.
    ++counts_[plant::apiPathFromName(record.path) ? record.path : "other"];
    records_.push_back(std::move(record));
    if (records_.size() > most_records)
        records_.pop_front();
    return last_;
}

std::vector<RequestRecord> RequestLog::since(std::uint64_t number) const
{
    const std::lock_guard<std::mutex> lock(mutex_);
    std::vector<RequestRecord> chosen;
    for (const RequestRecord& record : records_) {
        if (record.number > number)
            chosen.push_back(record);
    }
    return chosen;
}

std::map<std::string, std::uint64_t> RequestLog::counts() const
{
    const std::lock_guard<std::mutex> lock(mutex_);
    return counts_;
}

plant::Json toJson(const RequestRecord& record)
{
    return {{"number", record.number},
            {"time", record.time},
            {"path", record.path},
            {"item", record.item},
            {"errorcode", record.error_code ? plant::Json(*record.error_code) : plant::Json()},
            {"status", record.status},
            {"fault", record.fault},
            {"resumed", record.resumed ? plant::Json(*record.resumed) : plant::Json()},
            {"duration_ms", record.milliseconds},
            {"body", record.body}};
}

} // namespace tovik_service::http
