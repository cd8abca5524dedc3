#include "tools/host/watch/views.h"

namespace tovik_host::watch {

namespace {

const int log_lines = 5;

QLatin1String styleStart(LineStyle style)
{
    switch (style) {
    case LineStyle::heading:
        return QLatin1String("\033[1m");
    case LineStyle::stale:
        return QLatin1String("\033[33m");
    case LineStyle::trouble:
        return QLatin1String("\033[31m");
    case LineStyle::log:
        return QLatin1String("\033[2m");
    case LineStyle::plain:
        break;
    }
    return QLatin1String("");
}

} // namespace

TerminalView::TerminalView(terminal::Output& output, const terminal::DebugLog& log, bool shows_log)
    : output_(output),
      log_(log),
      shows_log_(shows_log),
      has_colours_(qEnvironmentVariableIsEmpty("NO_COLOR"))
{}

void TerminalView::start(const WatchSubject& subject, const QDateTime&)
{
    subject_ = subject;
}

void TerminalView::roundDone(const WatchModel& model, const QDateTime& now)
{
    terminal::ScreenSize size = output_.screenSize();
    // The cursor rests on the line below the table.
    size.rows -= 1;
    const QStringList log = shows_log_ ? log_.lastLines(log_lines) : QStringList();
    const QVector<ScreenLine> screen = drawTable(subject_, model, log, now, size);

    // The cursor is hidden while it wanders only: however the program ends, it is there again.
    QString frame = u"\033[?25l"_s;
    if (from_empty_screen_)
        frame += u"\033[H\033[J"_s;
    else if (drawn_lines_ > 0)
        frame += u"\033[%1A"_s.arg(drawn_lines_);
    for (const ScreenLine& line : screen) {
        const QLatin1String style = styleStart(line.style);
        const bool styled = has_colours_ && style.size() > 0;
        frame += styled ? style + line.text + QLatin1String("\033[0m") : line.text;
        frame += u"\033[K\r\n"_s;
    }
    frame += u"\033[J\033[?25h"_s;
    output_.write(frame);
    drawn_lines_ = screen.size();
    from_empty_screen_ = false;
}

void TerminalView::end(const QDateTime&)
{
    // The terminal itself has echoed the key that ended the program.
    output_.write(u"\r\033[K"_s);
}

void TerminalView::resized()
{
    from_empty_screen_ = true;
}

} // namespace tovik_host::watch
