#include "tools/host/terminal/near_name.h"

#include <numeric>
#include <vector>

namespace tovik_host::terminal {

int editDistance(const QString& one, const QString& other)
{
    const QString from = one.toLower();
    const QString to = other.toLower();
    // Distances between the letters of `from` looked at so far and each beginning of `to`.
    std::vector<int> row(std::size_t(to.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (int i = 0; i < from.size(); ++i) {
        int diagonal = row[0];
        row[0] = i + 1;
        for (int j = 0; j < to.size(); ++j) {
            const std::size_t at = std::size_t(j) + 1;
            const int replaced = diagonal + (from.at(i) == to.at(j) ? 0 : 1);
            diagonal = row[at];
            row[at] = qMin(replaced, 1 + qMin(row[at], row[at - 1]));
        }
    }
    return row.back();
}

bool isNear(const QString& written, const QString& meant)
{
    const int allowed = qMax(1, qMin(written.size(), meant.size()) / 3);
    // The lengths alone tell most of a long list apart.
    return qAbs(written.size() - meant.size()) <= allowed &&
           editDistance(written, meant) <= allowed;
}

} // namespace tovik_host::terminal
