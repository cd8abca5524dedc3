#ifndef TOOLS_CLOUD_TOKEN_STORE_H
#define TOOLS_CLOUD_TOKEN_STORE_H

#include "tools/cloud/clock.h"

#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>

namespace tovik_cloud {

/// The tokens that were handed out and are still good. Safe to use from several threads.
class TokenStore
{
public:
    /// Tokens live this many seconds; nothing means for ever.
    explicit TokenStore(std::optional<double> lifetime, Clock clock = steadySeconds);

    /// Makes a new random token.
    std::string create();

    bool isKnown(const std::string& token);

    /// Forgets all tokens and says how many there were.
    std::size_t expireAll();

    std::size_t activeCount();

private:
    void dropOld();

    std::optional<double> lifetime_;
    Clock clock_;
    std::mutex mutex_;
    std::unordered_map<std::string, double> made_;
    std::deque<std::string> order_;
};

} // namespace tovik_cloud

#endif
