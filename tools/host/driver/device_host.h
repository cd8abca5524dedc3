#ifndef TOOLS_HOST_DRIVER_DEVICE_HOST_H
#define TOOLS_HOST_DRIVER_DEVICE_HOST_H

#include "tools/host/driver/device_session.h"
#include "tools/host/terminal/unix_signals.h"

#include <QElapsedTimer>
#include <QObject>
#include <QThread>

#include <functional>
#include <memory>

namespace tovik_host::driver {

/// A device session in a thread of its own.
///
/// Requests block the session's thread for as long as the device is silent. The caller's thread
/// runs its event loop meanwhile: signals are heard, and end the request. All functions are to be
/// called in the thread that made the host, one at a time.
class DeviceHost : public QObject
{
    Q_OBJECT

public:
    /// Once \a unix_signals ask the program to end, the session is stopped. A driver that does not
    /// come back even so is left alone at the next signal, and the program ends.
    DeviceHost(const Plugin& plugin, const DeviceConfig& config,
               const terminal::UnixSignals& unix_signals);
    /// Releases driver and link.
    ~DeviceHost() override;

    /// As the session's functions of these names.
    QString open() { return ask(&DeviceSession::open); }
    DeviceAnswer read(const config::ItemConfig& item) { return ask(&DeviceSession::read, item); }
    DeviceAnswer readAgain(const config::ItemConfig& item)
    {
        return ask(&DeviceSession::readAgain, item);
    }
    DeviceAnswer write(const config::ItemConfig& item, const QByteArray& bytes)
    {
        return ask(&DeviceSession::write, item, bytes);
    }
    DeviceAnswer sendRaw(const QByteArray& request)
    {
        return ask(&DeviceSession::sendRaw, request);
    }
    bool supportsRaw() { return ask(&DeviceSession::supportsRaw); }
    void stop()
    {
        if (session_)
            session_->stop();
    }

private Q_SLOTS:
    void onEndAsked();

private:
    void run(const std::function<void()>& job);
    /// What the session answers.
    template <typename Answer, typename... Parameters>
    Answer ask(Answer (DeviceSession::*function)(const Parameters&...),
               const Parameters&... parameters)
    {
        Answer answer = Answer();
        run([&] { answer = (session_.get()->*function)(parameters...); });
        return answer;
    }

    QThread thread_;
    QObject worker_; ///< Lives in the thread, to have something done there.
    std::unique_ptr<DeviceSession> session_;
    QElapsedTimer since_end_asked_;
};

} // namespace tovik_host::driver

#endif
