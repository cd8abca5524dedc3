#include "tools/service/control/control_guard.h"

#include <openssl/crypto.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace tovik_service::control {

namespace {

constexpr std::size_t shortest_token = 16;
constexpr std::size_t longest_token = 200;

std::string lowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

/// The host of "host", "host:port" or "[address]:port".
std::string withoutPort(const std::string& host_header)
{
    if (!host_header.empty() && host_header.front() == '[') {
        const std::size_t end = host_header.find(']');
        return end == std::string::npos ? std::string() : host_header.substr(1, end - 1);
    }
    return host_header.substr(0, host_header.find(':'));
}

bool changesNothing(const std::string& method)
{
    return method == "GET" || method == "HEAD";
}

/// The page has to come before the token: it is the page that asks for it.
bool isPage(const ControlRequest& request)
{
    return changesNothing(request.method) &&
           (request.path == "/" || request.path.rfind("/dashboard/", 0) == 0);
}

bool isVisible(unsigned char c)
{
    return c > 0x20 && c < 0x7f;
}

} // namespace

ControlGuard::ControlGuard(ControlAccess access) : access_(std::move(access)) {}

std::optional<ControlRefusal> ControlGuard::refusal(const ControlRequest& request) const
{
    // A name of somebody else's that leads here makes his page one of ours for the browser.
    if (access_.loopback && !namesThisComputer(request.host)) {
        return ControlRefusal{403, "the header Host has to name this computer, for example "
                                   "localhost; open the address that tovik-cloud printed"};
    }
    if (!changesNothing(request.method) && !request.origin.empty() &&
        lowerCase(request.origin) != "http://" + lowerCase(request.host)) {
        return ControlRefusal{403, "a page of another site may not change anything here"};
    }
    if (!access_.token.empty() && !isPage(request) && !showsToken(request.authorization)) {
        return ControlRefusal{401, "the header \"Authorization: Bearer TOKEN\" is missing or has "
                                   "another token; tovik-cloud printed it at its start, or read it "
                                   "from --control-token-file"};
    }
    return std::nullopt;
}

bool ControlGuard::namesThisComputer(const std::string& host_header) const
{
    const std::string host = lowerCase(withoutPort(host_header));
    return !host.empty() && (host == "localhost" || host == "127.0.0.1" || host == "::1" ||
                             host == lowerCase(access_.host) || host == access_.address);
}

// The time that this takes does not tell how much of a guess is right.
bool ControlGuard::showsToken(const std::string& authorization) const
{
    const std::string scheme = "bearer ";
    if (lowerCase(authorization.substr(0, scheme.size())) != scheme)
        return false;
    const std::string shown = authorization.substr(scheme.size());
    return shown.size() == access_.token.size() &&
           CRYPTO_memcmp(shown.data(), access_.token.data(), shown.size()) == 0;
}

std::string readControlToken(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    stream.peek(); // a folder can be opened, but not read
    if (!stream.is_open() || stream.bad())
        throw std::invalid_argument("cannot read the token file " + file);
    std::ostringstream content;
    content << stream.rdbuf();
    std::string text = content.str();
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
        text.pop_back();
    if (text.size() < shortest_token || text.size() > longest_token ||
        !std::all_of(text.begin(), text.end(), isVisible)) {
        throw std::invalid_argument(
            file + ": a token has " + std::to_string(shortest_token) + " to " +
            std::to_string(longest_token) +
            " visible ASCII characters on one line; make one with: openssl rand -hex 16");
    }
    return text;
}

} // namespace tovik_service::control
