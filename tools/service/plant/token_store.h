#ifndef TOOLS_SERVICE_PLANT_TOKEN_STORE_H
#define TOOLS_SERVICE_PLANT_TOKEN_STORE_H

#include "tools/service/plant/clock.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace tovik_service::plant {

/// 128 random bits as 32 hexadecimal digits.
std::string randomToken();

/// Who logged in: what the log of the clients shows.
struct TokenOwner
{
    std::string account; ///< e-mail address
    std::string address; ///< the client's, with its port
};

/// A good token, for people.
struct TokenStatus
{
    std::string short_token; ///< the first characters
    TokenOwner owner;
    double age = 0;  ///< seconds since the login
    double idle = 0; ///< seconds since the last request with it, or since the login
    std::uint64_t uses = 0;
};

/// The tokens that were handed out and are still good. Safe to use from several threads.
class TokenStore
{
public:
    /// Tokens live this many seconds; nothing means for ever.
    explicit TokenStore(std::optional<double> lifetime, Clock clock = steadySeconds);

    /// Makes a new random token.
    std::string create(const TokenOwner& owner = {});

    /// True if the token is good; counts that as a use of it.
    bool isKnown(const std::string& token);

    /// Forgets all tokens and says how many there were.
    std::size_t expireAll();

    std::size_t activeCount();

    /// The tokens that were used last, latest first.
    std::vector<TokenStatus> list(std::size_t most);

private:
    struct Entry
    {
        TokenOwner owner;
        double made = 0;
        double used = 0;
        std::uint64_t uses = 0;
    };

    void dropOld();

    std::optional<double> lifetime_;
    Clock clock_;
    std::mutex mutex_;
    std::unordered_map<std::string, Entry> entries_;
    std::deque<std::string> order_;
};

} // namespace tovik_service::plant

#endif
