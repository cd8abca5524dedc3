#include "tools/host/terminal/line_input.h"

#include <QEventLoop>
#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace tovik_host::terminal {

namespace {

/// Switches a terminal's echo off for as long as it lives.
class Silence
{
public:
    explicit Silence(int descriptor) : descriptor_(descriptor)
    {
        is_terminal_ = tcgetattr(descriptor_, &before_) == 0;
        termios silent = before_;
        silent.c_lflag &= ~tcflag_t(ECHO);
        if (is_terminal_)
            tcsetattr(descriptor_, TCSAFLUSH, &silent);
    }
    ~Silence()
    {
        if (is_terminal_)
            tcsetattr(descriptor_, TCSANOW, &before_);
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    int descriptor_;
    bool is_terminal_ = false;
    termios before_ = {};
};

} // namespace

std::optional<QString> LineInput::ask(const QString& prompt)
{
    prompts_.write(prompt);
    while (!pending_.contains('\n')) {
        if (!waitForInput())
            return std::nullopt;
        std::array<char, 4096> buffer = {};
        const ssize_t count = ::read(descriptor_, buffer.data(), buffer.size());
        if (count < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (count > 0) {
            pending_.append(buffer.data(), int(count));
            continue;
        }
        if (pending_.isEmpty())
            return std::nullopt;
        pending_.append('\n');
    }
    const int end = pending_.indexOf('\n');
    QByteArray line = pending_.left(end);
    pending_.remove(0, end + 1);
    if (line.endsWith('\r'))
        line.chop(1);
    return QString::fromUtf8(line);
}

std::optional<QString> LineInput::askSecretly(const QString& prompt)
{
    const Silence silence(descriptor_);
    const std::optional<QString> line = ask(prompt);
    // The terminal has not shown the key that ended the line, either.
    prompts_.write(u"\n"_s);
    return line;
}

bool LineInput::isTerminal() const
{
    return isatty(descriptor_) == 1;
}

/// False after a signal. A file is always ready, and cannot be watched by a notifier.
bool LineInput::waitForInput()
{
    if (unix_signals_.endRequested())
        return false;
    pollfd ready = {descriptor_, POLLIN, 0};
    if (::poll(&ready, 1, 0) > 0)
        return true;
    QEventLoop loop;
    QSocketNotifier notifier(descriptor_, QSocketNotifier::Read);
    QObject::connect(&notifier, &QSocketNotifier::activated, &loop, &QEventLoop::quit);
    QObject::connect(&unix_signals_, &UnixSignals::endAsked, &loop, &QEventLoop::quit);
    loop.exec();
    return !unix_signals_.endRequested();
}

} // namespace tovik_host::terminal
