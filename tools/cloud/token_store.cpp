#include "tools/cloud/token_store.h"

#include <array>
#include <cstdio>
#include <random>
#include <utility>

namespace tovik_cloud {

namespace {

// A client that logs in again and again must not make the store grow without end.
constexpr std::size_t mostTokens = 10000;

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

} // namespace

TokenStore::TokenStore(std::optional<double> lifetime, Clock clock)
    : lifetime_(lifetime),
      clock_(std::move(clock))
{}

std::string TokenStore::create()
{
    std::string token = randomToken();
    const std::lock_guard<std::mutex> lock(mutex_);
    made_[token] = clock_();
    order_.push_back(token);
    dropOld();
    return token;
}

bool TokenStore::isKnown(const std::string& token)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    dropOld();
    return made_.count(token) > 0;
}

std::size_t TokenStore::expireAll()
{
    const std::lock_guard<std::mutex> lock(mutex_);
    dropOld();
    const std::size_t count = made_.size();
    made_.clear();
    order_.clear();
    return count;
}

std::size_t TokenStore::activeCount()
{
    const std::lock_guard<std::mutex> lock(mutex_);
    dropOld();
    return made_.size();
}

void TokenStore::dropOld()
{
    const double now = clock_();
    const auto isOver = [this, now](const std::string& token) {
        return lifetime_ && now - made_.at(token) >= *lifetime_;
    };
    while (!order_.empty() && (order_.size() > mostTokens || isOver(order_.front()))) {
        made_.erase(order_.front());
        order_.pop_front();
    }
}

} // namespace tovik_cloud
