#include "tools/host/terminal/context.h"

#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/text_width.h"

#include <cerrno>

namespace tovik_host::terminal {

void Streams::complain(const QString& problem)
{
    err.line(QStringLiteral("tovik-host: ") + printable(problem));
}

void Streams::complain(const QString& subject, const QString& problem)
{
    complain(QStringLiteral("%1: %2").arg(subject, problem));
}

void Streams::warn(const QString& text)
{
    complain(QStringLiteral("warning: ") + text);
}

int Streams::codeAfterWriting(int code)
{
    if (out.error() == 0 || out.error() == EPIPE)
        return code;
    complain(QStringLiteral("cannot write the standard output: ") + qt_error_string(out.error()));
    return exitUsage;
}

} // namespace tovik_host::terminal
