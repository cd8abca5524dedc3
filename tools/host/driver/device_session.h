#ifndef TOOLS_HOST_DRIVER_DEVICE_SESSION_H
#define TOOLS_HOST_DRIVER_DEVICE_SESSION_H

#include "tools/host/driver/device_link.h"
#include "tools/host/driver/driver_session.h"
#include "tools/host/driver/plugin.h"

#include <QMutex>
#include <QObject>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>

namespace tovik_host::driver {

/// What became of one request to a device.
struct DeviceAnswer
{
    Answer answer;
    /// Why there was no link, or what became of it during the request; empty while it is well.
    QString link_problem;
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
    DeviceAnswer read(const config::ItemConfig& item);
    /// The same for a reader who comes again: does not wait for a link that is down, and answers
    /// offline_status meanwhile.
    DeviceAnswer readAgain(const config::ItemConfig& item);
    DeviceAnswer write(const config::ItemConfig& item, const QByteArray& bytes);
    /// Sends a frame as it is.
    DeviceAnswer sendRaw(const QByteArray& request);
    /// Whether the driver wants frames sent as they are.
    bool supportsRaw();

    /// Ends what is running as soon as the driver sees it, and refuses what comes later: a stopped
    /// driver must not be asked again. Thread-safe.
    void stop();

private Q_SLOTS:
    void onResponse(QString unit_name, QString link_name, QByteArray bytes, int status);
    void take(QByteArray bytes, int status);

private:
    DeviceAnswer ask(const std::function<void()>& request);
    DeviceAnswer askOnOpenLink(const std::function<void()>& request);
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

} // namespace tovik_host::driver

#endif
