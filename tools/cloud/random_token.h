#ifndef TOOLS_CLOUD_RANDOM_TOKEN_H
#define TOOLS_CLOUD_RANDOM_TOKEN_H

#include <string>

namespace tovik_cloud {

/// 128 random bits as 32 hexadecimal digits.
std::string randomToken();

} // namespace tovik_cloud

#endif
