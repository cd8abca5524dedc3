#ifndef TESTS_TOOLS_HOST_LINE_DEVICE_H
#define TESTS_TOOLS_HOST_LINE_DEVICE_H

#include "tests/support/scripted_device.h"

#include <QMap>
#include <QTemporaryDir>

/// A device for the echo driver.
///
/// It answers the driver's lines by their address:
///   "hex:0500"     these bytes
///   "long:0500"    these bytes and one more
///   "params"       the numbers of the request as a text
///   "silent"       nothing
///   "close"        nothing, and it hangs up
///   others         the bytes that were written there last, or zeros
/// and a line that begins with "x" by the rest of it.
class LineDevice
{
public:
    explicit LineDevice(ScriptedDevice::Line line = ScriptedDevice::Line::Tcp);

    /// The argument of --link; the same after it has come back.
    QString link() const;
    /// Goes away, as a device that is switched off.
    void leave();
    /// Comes back at the same place.
    void comeBack();
    /// All lines that have come.
    QList<QByteArray> lines() const;
    int connections() const { return device_.connections(); }

private:
    QString path() const;
    void showPort();
    DeviceStep answerTo(const QByteArray& line);

    const QTemporaryDir folder_;
    QMap<QByteArray, QByteArray> memory_; ///< The device's thread alone knows it.
    ScriptedDevice device_;
};

#endif
