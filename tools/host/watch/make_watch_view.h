#ifndef TOOLS_HOST_WATCH_MAKE_WATCH_VIEW_H
#define TOOLS_HOST_WATCH_MAKE_WATCH_VIEW_H

#include "tools/host/config/options.h"
#include "tools/host/terminal/debug_log.h"
#include "tools/host/terminal/output.h"
#include "tools/host/terminal/unix_signals.h"
#include "tools/host/watch/watch_view.h"

#include <memory>

namespace tovik_host::watch {

/// The view that the options and the standard output ask for: JSON, a live table on a terminal, or
/// lines. All that it is made from must outlive it.
std::unique_ptr<WatchView> makeWatchView(const config::CommonOptions& common, terminal::Output& out,
                                         const terminal::DebugLog& log,
                                         terminal::UnixSignals& unix_signals);

/// Whether makeWatchView() makes a table, beside which nothing else may be written.
bool isWatchedOnTerminal(const config::CommonOptions& common);

} // namespace tovik_host::watch

#endif
