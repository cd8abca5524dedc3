#include "tools/service/plant/near_name.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

namespace tovik_service::plant {

namespace {

bool isSame(char one, char other)
{
    return std::tolower(static_cast<unsigned char>(one)) ==
           std::tolower(static_cast<unsigned char>(other));
}

/// How many letters have to be inserted, removed or replaced.
std::size_t distance(const std::string& one, const std::string& other)
{
    std::vector<std::size_t> row(other.size() + 1);
    for (std::size_t column = 0; column <= other.size(); ++column)
        row[column] = column;
    for (std::size_t i = 0; i < one.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t k = 0; k < other.size(); ++k) {
            const std::size_t replaced = diagonal + (isSame(one[i], other[k]) ? 0 : 1);
            diagonal = row[k + 1];
            row[k + 1] = std::min({replaced, diagonal + 1, row[k] + 1});
        }
    }
    return row.back();
}

} // namespace

std::string nearName(const std::string& written, const std::vector<std::string>& names)
{
    std::string nearest;
    std::size_t least = 1 + written.size() / 4; // so many mistakes may be in it
    for (const std::string& name : names) {
        const std::size_t mistakes = distance(written, name);
        if (mistakes > least || (mistakes == least && !nearest.empty()))
            continue;
        nearest = name;
        least = mistakes;
    }
    return nearest;
}

} // namespace tovik_service::plant
