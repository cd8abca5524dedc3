#ifndef TOOLS_SERVICE_PLANT_RANDOM_TOKEN_H
#define TOOLS_SERVICE_PLANT_RANDOM_TOKEN_H

#include <string>

namespace tovik_service::plant {

/// 128 random bits as 32 hexadecimal digits.
std::string randomToken();

} // namespace tovik_service::plant

#endif
