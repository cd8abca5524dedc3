#include "tools/service/http/event_log.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>
#include <iostream>
#include <stdexcept>
#include <system_error>

namespace tovik_service::http {

namespace {

std::string timeStamp()
{
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const auto since_epoch = now.time_since_epoch();
    const auto ms =
        std::chrono::duration_cast<std::chrono::milliseconds>(since_epoch).count() % 1000;
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    std::array<char, 32> text{};
    const std::size_t size = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &parts);
    const std::string millis = std::to_string(1000 + ms).substr(1);
    return std::string(text.data(), size) + "." + millis + "Z";
}

} // namespace

EventLog::EventLog(const std::string& file, bool verbose) : verbose_(verbose)
{
    if (file.empty())
        return;
    try {
        file_.emplace(file);
    } catch (const std::system_error& error) {
        throw std::runtime_error("cannot write the log file " + file + ": " +
                                 error.code().message() + "; choose another with --log");
    }
}

void EventLog::note(const std::string& text)
{
    std::string line = timeStamp() + " " + text;
    // What a client sent must not be able to forge further lines.
    std::replace_if(
        line.begin(), line.end(),
        [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, '?');
    line += '\n';
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!file_) {
        std::cerr << line << std::flush;
        return;
    }
    const int error = file_->append(line);
    if (error != 0) {
        std::cerr << timeStamp() << " the log file lacks lines from here on: "
                  << std::generic_category().message(error) << std::endl;
    }
}

void EventLog::detail(const std::string& text)
{
    if (verbose_)
        note(text);
}

} // namespace tovik_service::http
