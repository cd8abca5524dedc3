#include "tools/host/terminal/context.h"

#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/text.h"

#include <cerrno>

namespace tovik_host::terminal {

void Streams::complain(const QString& problem)
{
    err.line(u"tovik-host: "_s + printable(problem));
}

void Streams::complain(const QString& subject, const QString& problem)
{
    complain(u"%1: %2"_s.arg(subject, problem));
}

void Streams::warn(const QString& text)
{
    complain(u"warning: "_s + text);
}

int Streams::codeAfterWriting(int code)
{
    if (out.error() == 0 || out.error() == EPIPE)
        return code;
    complain(u"cannot write the standard output: "_s + qt_error_string(out.error()));
    return exitUsage;
}

} // namespace tovik_host::terminal
