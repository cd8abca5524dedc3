#ifndef TOOLS_HOST_DRIVER_DEVICE_HOST_H
#define TOOLS_HOST_DRIVER_DEVICE_HOST_H

#include "tools/host/driver/device_config.h"
#include "tools/host/driver/driver_session.h"
#include "tools/host/driver/plugin.h"
#include "tools/host/terminal/unix_signals.h"

#include "interface/drv_ethernet.h"

#include <QElapsedTimer>
#include <QMutex>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QThread>

#include <atomic>
#include <functional>
#include <memory>

namespace tovik_host::driver {

/// The link to a device, which the host opens and keeps open. To be used in one thread.
class DeviceLink : public QObject
{
public:
    /// A closed link with the link's address and settings.
    static std::unique_ptr<DeviceLink> make(const DeviceConfig& config);

    /// Opens the link unless it is open: one attempt, during which the event loop runs.
    /// \param milliseconds the longest that it may take
    /// \param stop ends the attempt once it becomes true
    /// \return whether the link is open; if not, see problem().
    bool open(int milliseconds, const std::atomic<bool>& stop);
    /// Works on a link that is not open, without waiting: begins an attempt when the last one is
    /// some time ago, and gives one up that takes longer than \a milliseconds.
    /// \return whether the link is open; if not, see problem().
    bool tend(int milliseconds);
    /// Whether the link is open, after a look at what has happened to it.
    bool isUp();
    const QString& problem() const { return problem_; }

    /// The link as the driver gets it: one of them is not null.
    virtual DrvSerial* serial() { return nullptr; }
    virtual DrvEthernet* ethernet() { return nullptr; }
    /// Tells the driver that the link is going to be released.
    virtual void announceRelease() {}

protected:
    enum class State
    {
        down,
        opening,
        up
    };

    virtual State state() = 0;
    /// Begins an attempt, which may be over on return.
    virtual void startOpening() = 0;
    virtual void giveUpOpening() = 0;

    QString problem_;

private:
    void begin();
    void giveUp();

    QElapsedTimer attempt_;
};

/// A link with a driver of the framework on it. All but stop() belongs into one thread, from
/// open() to the destructor: requests block it.
class DeviceSession : public QObject
{
    Q_OBJECT

public:
    /// \param plugin must outlive the session.
    DeviceSession(const Plugin& plugin, const DeviceConfig& config);
    ~DeviceSession() override;

    /// Opens the link and makes the driver.
    /// \return what went wrong with the link, or an empty text. Throws UsageError if the library
    ///         makes no driver.
    QString open();

    /// Reads an item. A link that was lost is opened again before.
    Answer read(const config::ItemConfig& item);
    /// The same for a reader who comes again: does not wait for a link that is down, and answers
    /// offline_status meanwhile.
    Answer readAgain(const config::ItemConfig& item);
    Answer write(const config::ItemConfig& item, const QByteArray& bytes);
    /// Sends a frame as it is.
    Answer sendRaw(const QByteArray& request);
    /// Whether the driver wants frames sent as they are.
    bool supportsRaw();

    /// Ends what is running as soon as the driver sees it, and refuses what comes later: a stopped
    /// driver must not be asked again. Thread-safe.
    void stop();

private Q_SLOTS:
    void onResponse(QString unit_name, QString link_name, QByteArray bytes, int status);
    void take(QByteArray bytes, int status);

private:
    Answer ask(const std::function<void()>& request);
    Answer askOnOpenLink(const std::function<void()>& request);
    void emitRead(const config::ItemConfig& item);

    const Plugin& plugin_;
    const DeviceConfig config_;
    QString driver_name_;
    QStringList unit_list_;
    std::unique_ptr<DeviceLink> link_;
    /// Guards the driver's life against stop().
    QMutex driver_lock_;
    std::unique_ptr<DrvInterface> driver_;
    std::atomic<bool> stopped_{false};
    Answer answer_;
};

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
    Answer read(const config::ItemConfig& item) { return ask(&DeviceSession::read, item); }
    Answer readAgain(const config::ItemConfig& item)
    {
        return ask(&DeviceSession::readAgain, item);
    }
    Answer write(const config::ItemConfig& item, const QByteArray& bytes)
    {
        return ask(&DeviceSession::write, item, bytes);
    }
    Answer sendRaw(const QByteArray& request) { return ask(&DeviceSession::sendRaw, request); }
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
    template <typename Result, typename... Parameters>
    Result ask(Result (DeviceSession::*function)(const Parameters&...),
               const Parameters&... parameters)
    {
        Result answer = Result();
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
