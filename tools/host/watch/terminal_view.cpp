#include "tools/host/watch/table_view.h"

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

class TerminalView : public WatchView
{
public:
    TerminalView(terminal::Context& context, bool shows_log)
        : context_(context),
          shows_log_(shows_log),
          has_colours_(qEnvironmentVariableIsEmpty("NO_COLOR"))
    {
        // What the old size left there is no longer where it was drawn.
        QObject::connect(&context.unix_signals, &terminal::UnixSignals::terminalResized,
                         &context.unix_signals, [this] { from_empty_screen_ = true; });
    }

    void start(const WatchSubject& subject, const QDateTime&) override { subject_ = subject; }

    void roundDone(const WatchModel& model, const QDateTime& now) override
    {
        terminal::ScreenSize size = context_.out.screenSize();
        // The cursor rests on the line below the table.
        size.rows -= 1;
        const QStringList log = shows_log_ ? context_.log.lastLines(log_lines) : QStringList();
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
        context_.out.write(frame);
        drawn_lines_ = screen.size();
        from_empty_screen_ = false;
    }

    void end(const QDateTime&) override
    {
        // The terminal itself has echoed the key that ended the program.
        context_.out.write(u"\r\033[K"_s);
    }

private:
    terminal::Context& context_;
    bool shows_log_;
    bool has_colours_;
    WatchSubject subject_;
    int drawn_lines_ = 0;
    bool from_empty_screen_ = false;
};

} // namespace

std::unique_ptr<WatchView> terminalView(terminal::Context& context, bool shows_log)
{
    return std::make_unique<TerminalView>(context, shows_log);
}

} // namespace tovik_host::watch
