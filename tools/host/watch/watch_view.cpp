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
    auto view = std::make_unique<TerminalView>(context.out, context.log,
                                               common.log.isEmpty() && !common.verbose);
    TerminalView* table = view.get();
    QObject::connect(&context.unix_signals, &terminal::UnixSignals::terminalResized,
                     &context.unix_signals, [table] { table->resized(); });
    return view;
}

namespace {

/// Why the watch was in vain; empty: it was not.
QString problemOf(const WatchModel& model, const WatchGoal& goal, bool is_interrupted)
{
    if (model.valueCount() == 0)
        return u"no value has arrived"_s;
    if (goal.is_strict && !model.firstTrouble().isEmpty())
        return u"--strict: "_s + model.firstTrouble();
    if (model.valueCount() < goal.count && !is_interrupted)
        return u"%1 of %2 values have come in time"_s.arg(model.valueCount()).arg(goal.count);
    return QString();
}

} // namespace

int endWatch(WatchView& view, const WatchModel& model, const WatchGoal& goal,
             terminal::Context& context)
{
    view.end(QDateTime::currentDateTime());
    if (context.out.broken()) // whoever goes has seen enough
        return context.codeAfterWriting(terminal::exitDone);
    const QString problem = problemOf(model, goal, context.unix_signals.endRequested());
    if (problem.isEmpty())
        return terminal::exitDone;
    context.complain(problem);
    return terminal::exitRefused;
}

} // namespace tovik_host::watch
