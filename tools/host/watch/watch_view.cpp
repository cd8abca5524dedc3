#include "tools/host/watch/watch_view.h"

#include "tools/host/terminal/exit_code.h"
#include "tools/host/watch/views.h"

namespace tovik_host::watch {

bool isWatchedOnTerminal(const config::CommonOptions& common)
{
    return !common.json && ::isatty(STDOUT_FILENO) != 0;
}

std::unique_ptr<WatchView> makeWatchView(const config::CommonOptions& common,
                                         terminal::Context& context)
{
    if (common.json)
        return std::make_unique<JsonView>(context.out);
    if (!isWatchedOnTerminal(common))
        return std::make_unique<LineView>(context.out);
    auto view = std::make_unique<TerminalView>(STDOUT_FILENO, context.out, context.log,
                                               common.log.isEmpty() && !common.verbose);
    TerminalView* table = view.get();
    QObject::connect(&context.unix_signals, &terminal::UnixSignals::terminalResized,
                     &context.unix_signals, [table] { table->resized(); });
    return view;
}

int endWatch(WatchView& view, bool has_had_values, terminal::Context& context)
{
    view.end(QDateTime::currentDateTime());
    if (has_had_values || context.out.broken()) // whoever goes has seen enough
        return terminal::exitDone;
    context.complain(QStringLiteral("no value has arrived"));
    return terminal::exitRefused;
}

} // namespace tovik_host::watch
