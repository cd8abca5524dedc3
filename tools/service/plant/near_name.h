#ifndef TOOLS_SERVICE_PLANT_NEAR_NAME_H
#define TOOLS_SERVICE_PLANT_NEAR_NAME_H

#include <string>
#include <vector>

namespace tovik_service::plant {

/// Of the names the one of which a typing mistake may have made \a written, or an empty text.
/// Upper and lower case are the same.
std::string nearName(const std::string& written, const std::vector<std::string>& names);

} // namespace tovik_service::plant

#endif
