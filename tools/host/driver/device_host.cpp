#include "tools/host/driver/device_host.h"

#include "tools/host/terminal/exit_code.h"
#include "tools/host/terminal/output.h"

#include <QEventLoop>

#include <cstdlib>
#include <exception>
#include <unistd.h>

namespace tovik_host::driver {

namespace {

/// Two signals that come together are one wish.
const int second_wish = 1000;

} // namespace

DeviceHost::DeviceHost(const Plugin& plugin, const DeviceConfig& config,
                       const terminal::UnixSignals& unix_signals)
    : session_(new DeviceSession(plugin, config))
{
    connect(&unix_signals, &terminal::UnixSignals::endAsked, this, &DeviceHost::onEndAsked);
    session_->moveToThread(&thread_);
    worker_.moveToThread(&thread_);
    thread_.start();
}

DeviceHost::~DeviceHost()
{
    DeviceSession* session = session_.release();
    run([session] { delete session; });
    thread_.quit();
    thread_.wait();
}

void DeviceHost::run(const std::function<void()>& job)
{
    QEventLoop loop;
    std::exception_ptr failure;
    QMetaObject::invokeMethod(
        &worker_,
        [&] {
            try {
                job();
            } catch (...) {
                failure = std::current_exception();
            }
            QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
        },
        Qt::QueuedConnection);
    loop.exec();
    if (failure)
        std::rethrow_exception(failure);
}

void DeviceHost::onEndAsked()
{
    if (since_end_asked_.isValid() && since_end_asked_.hasExpired(second_wish)) {
        terminal::Output(STDERR_FILENO)
            .line(u"tovik-host: the driver does not come back from its request; ended without "
                  "releasing it"_s);
        std::_Exit(terminal::exitRefused);
    }
    if (!since_end_asked_.isValid())
        since_end_asked_.start();
    stop();
}

} // namespace tovik_host::driver
