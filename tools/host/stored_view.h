#ifndef TOOLS_HOST_STORED_VIEW_H
#define TOOLS_HOST_STORED_VIEW_H

#include "tools/host/stored_file.h"

#include <QStringList>

namespace tovik_host {

/// The file in words, line by line: what it is, the account, the groups, the items. Long values are
/// cut; members that a damaged stream did not give are shown as missing.
QStringList storedView(const StoredFile& file, const QString& path, HiddenTexts hidden);

/// "panel.bin: byte 312: dataitems[1].name: what is wrong".
QString problemText(const StoredProblem& problem, const QString& path);

} // namespace tovik_host

#endif
