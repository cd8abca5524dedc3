#include "tools/host/terminal/waiter.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

namespace tovik_host::terminal {

Waited waitUntil(const UnixSignals& unix_signals, int milliseconds,
                 const std::function<bool()>& condition)
{
    const int tick = 20;
    Waited result = Waited::met;
    QEventLoop loop;
    QTimer timer;
    QElapsedTimer elapsed;
    elapsed.start();
    const auto look = [&] {
        if (condition())
            result = Waited::met;
        else if (unix_signals.endRequested())
            result = Waited::interrupted;
        else if (elapsed.elapsed() >= milliseconds)
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
