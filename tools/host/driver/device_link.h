#ifndef TOOLS_HOST_DRIVER_DEVICE_LINK_H
#define TOOLS_HOST_DRIVER_DEVICE_LINK_H

#include "tools/host/driver/device_config.h"

#include "interface/drv_ethernet.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>

#include <atomic>
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
    /// Why the link is not open, in words.
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

} // namespace tovik_host::driver

#endif
