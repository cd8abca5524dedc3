#include "tools/service/plant/token_store.h"

#include "tools/service/plant/request_body.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <random>
#include <utility>

namespace tovik_service::plant {

namespace {

// A client that logs in again and again must not make the store grow without end.
constexpr std::size_t most_tokens = 10000;

} // namespace

std::string randomToken()
{
    std::random_device device;
    std::string token;
    for (int i = 0; i < 4; ++i) {
        std::array<char, 9> part{};
        std::snprintf(part.data(), part.size(), "%08x", static_cast<unsigned>(device()));
        token += part.data();
    }
    return token;
}

TokenStore::TokenStore(std::optional<double> lifetime, Clock clock)
    : lifetime_(lifetime),
      clock_(std::move(clock))
{}

std::string TokenStore::create(const TokenOwner& owner)
{
    std::string token = randomToken();
    const std::lock_guard<std::mutex> lock(mutex_);
    const double now = clock_();
    entries_[token] = {owner, now, now, 0};
    order_.push_back(token);
    dropOld();
    return token;
}

bool TokenStore::isKnown(const std::string& token)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    dropOld();
    const auto found = entries_.find(token);
    if (found == entries_.end())
        return false;
    found->second.used = clock_();
    ++found->second.uses;
    return true;
}

std::size_t TokenStore::expireAll()
{
    const std::lock_guard<std::mutex> lock(mutex_);
    dropOld();
    const std::size_t count = entries_.size();
    entries_.clear();
    order_.clear();
    return count;
}

std::size_t TokenStore::activeCount()
{
    const std::lock_guard<std::mutex> lock(mutex_);
    dropOld();
    return entries_.size();
}

std::vector<TokenStatus> TokenStore::list(std::size_t most)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    dropOld();
    const double now = clock_();
    std::vector<TokenStatus> statuses;
    // Newest first, so that the sorting leaves those of one moment in the order of their logins.
    for (auto token = order_.rbegin(); token != order_.rend(); ++token) {
        const Entry& entry = entries_.at(*token);
        statuses.push_back(
            {shortToken(*token), entry.owner, now - entry.made, now - entry.used, entry.uses});
    }
    std::stable_sort(statuses.begin(), statuses.end(),
                     [](const TokenStatus& a, const TokenStatus& b) { return a.idle < b.idle; });
    statuses.resize(std::min(most, statuses.size()));
    return statuses;
}

void TokenStore::dropOld()
{
    const double now = clock_();
    const auto is_over = [this, now](const std::string& token) {
        return lifetime_ && now - entries_.at(token).made >= *lifetime_;
    };
    while (!order_.empty() && (order_.size() > most_tokens || is_over(order_.front()))) {
        entries_.erase(order_.front());
        order_.pop_front();
    }
}

} // namespace tovik_service::plant
