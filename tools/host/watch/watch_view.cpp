#include "tools/host/watch/watch_view.h"

#include "tools/host/terminal/exit_code.h"

namespace tovik_host::watch {

bool isWatchedOnTerminal(const config::CommonOptions& common)
{
    return !common.json && ::isatty(STDOUT_FILENO) != 0;
}

std::unique_ptr<WatchView> watchView(const config::CommonOptions& common,
                                     terminal::Context& context)
{
    if (common.json)
        return jsonView(context.out);
    return isWatchedOnTerminal(common)
               ? terminalView(context, common.log.isEmpty() && !common.verbose)
               : lineView(context.out);
}

namespace {

/// Why the watch was in vain; empty: it was not.
QString problemOf(const WatchModel& model, const WatchOptions& options, bool is_interrupted)
{
    if (model.valueCount() == 0)
        return u"no value has arrived"_s;
    if (options.is_strict && !model.firstTrouble().isEmpty())
        return u"--strict: "_s + model.firstTrouble();
    if (model.valueCount() < options.count && !is_interrupted)
        return u"%1 of %2 values have come in time"_s.arg(model.valueCount()).arg(options.count);
    return QString();
}

} // namespace

int endWatch(WatchView& view, const WatchModel& model, const WatchOptions& options,
             terminal::Context& context)
{
    view.end(QDateTime::currentDateTime());
    if (context.out.broken()) // whoever goes has seen enough
        return context.codeAfterWriting(terminal::exitDone);
    const QString problem = problemOf(model, options, context.unix_signals.endRequested());
    if (problem.isEmpty())
        return terminal::exitDone;
    context.complain(problem);
    return terminal::exitRefused;
}

} // namespace tovik_host::watch
