#include "tools/service/plant/random_token.h"

#include <array>
#include <cstdio>
#include <random>

namespace tovik_service::plant {

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

} // namespace tovik_service::plant
