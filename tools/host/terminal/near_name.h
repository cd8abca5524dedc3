#ifndef TOOLS_HOST_TERMINAL_NEAR_NAME_H
#define TOOLS_HOST_TERMINAL_NEAR_NAME_H

#include <QString>

namespace tovik_host::terminal {

/// How many letters have to be inserted, removed or replaced to make one text of the other; upper
/// and lower case are the same.
int editDistance(const QString& one, const QString& other);

/// Whether a typing mistake may have made \a written of \a meant.
bool isNear(const QString& written, const QString& meant);

} // namespace tovik_host::terminal

#endif
