#include "tools/host/watch/make_watch_view.h"

#include "tools/host/watch/json_view.h"
#include "tools/host/watch/line_view.h"
#include "tools/host/watch/terminal_view.h"

#include <unistd.h>

namespace tovik_host::watch {

bool isWatchedOnTerminal(const config::CommonOptions& common)
{
    return !common.json && ::isatty(STDOUT_FILENO) != 0;
}

std::unique_ptr<WatchView> makeWatchView(const config::CommonOptions& common, terminal::Output& out,
                                         const terminal::DebugLog& log,
                                         terminal::UnixSignals& unix_signals)
{
    if (common.json)
        return std::make_unique<JsonView>(out);
    if (!isWatchedOnTerminal(common))
        return std::make_unique<LineView>(out);
    auto view = std::make_unique<TerminalView>(STDOUT_FILENO, out, log,
                                               common.log.isEmpty() && !common.verbose);
    TerminalView* table = view.get();
    QObject::connect(&unix_signals, &terminal::UnixSignals::terminalResized, &unix_signals,
                     [table] { table->resized(); });
    return view;
}

} // namespace tovik_host::watch
