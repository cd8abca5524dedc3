#include "tools/host/terminal/unix_signals.h"

#include <fcntl.h>
#include <unistd.h>

#include <QEventLoop>
#include <QSocketNotifier>
#include <QTimer>

#include <cerrno>
#include <csignal>

namespace tovik_host::terminal {

namespace {

const std::array<int, 4> caught = {SIGINT, SIGTERM, SIGHUP, SIGWINCH};

/// The end that the signal handler writes to: a handler may do hardly more than write a byte.
volatile std::sig_atomic_t write_end = -1;

extern "C" void passOn(int number)
{
    const int kept_errno = errno;
    const char byte = static_cast<char>(number);
    // A full pipe holds signals enough to wake the reader.
    const ssize_t written = ::write(write_end, &byte, 1);
    static_cast<void>(written);
    errno = kept_errno;
}

void handle(int number, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(number, &action, nullptr);
}

} // namespace

UnixSignals::UnixSignals()
{
    if (::pipe2(pipe_.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        qFatal("cannot make a pipe for signals");
    write_end = pipe_[1];
    notifier_ = new QSocketNotifier(pipe_[0], QSocketNotifier::Read, this);
    connect(notifier_, &QSocketNotifier::activated, this, &UnixSignals::onReadable);
    for (const int number : caught)
        handle(number, passOn);
    handle(SIGPIPE, SIG_IGN);
}

UnixSignals::~UnixSignals()
{
    for (const int number : caught)
        handle(number, SIG_DFL);
    handle(SIGPIPE, SIG_DFL);
    delete notifier_;
    write_end = -1;
    ::close(pipe_[0]);
    ::close(pipe_[1]);
}

void UnixSignals::onReadable()
{
    bool ends = false;
    bool resized = false;
    char byte = 0;
    while (::read(pipe_[0], &byte, 1) == 1) {
        resized = resized || byte == SIGWINCH;
        ends = ends || byte != SIGWINCH;
    }
    if (resized)
        Q_EMIT terminalResized();
    if (!ends)
        return;
    end_requested_ = true;
    Q_EMIT endAsked();
}

Waited waitUntil(const UnixSignals& unix_signals, int milliseconds,
                 const std::function<bool()>& condition)
{
    const int tick = 20;
    Waited result = Waited::met;
    QEventLoop loop;
    QTimer timer;
    const Stopwatch elapsed;
    const auto look = [&] {
        if (condition())
            result = Waited::met;
        else if (unix_signals.endRequested())
            result = Waited::interrupted;
        else if (elapsed.milliseconds() >= milliseconds)
            result = Waited::timed_out;
        else
            return;
        loop.quit();
    };
    QObject::connect(&timer, &QTimer::timeout, &loop, look);
    timer.start(tick);
    loop.exec();
    return result;
}

} // namespace tovik_host::terminal
