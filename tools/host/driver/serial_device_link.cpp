#include "tools/host/driver/serial_device_link.h"

#include <QFileInfo>

#include <unistd.h>

namespace tovik_host::driver {

namespace {

/// The file of a port, as the port itself finds it.
QString pathOf(const QString& device)
{
    for (const char* start : {"/", "./", "../"}) {
        if (device.startsWith(QLatin1String(start)))
            return device;
    }
    return QStringLiteral("/dev/") + device;
}

} // namespace

SerialDeviceLink::SerialDeviceLink(const SerialAddress& address, const LinkSettings& settings)
    : path_(pathOf(address.device)),
      port_(path_)
{
    settings.fill(&port_);
    port_.setBaudRate(address.baud_rate);
    port_.setDataBits(address.data_bits);
    port_.setParity(address.parity);
    port_.setStopBits(address.stop_bits);
    port_.setFlowControl(address.flow);
}

DeviceLink::State SerialDeviceLink::state()
{
    return port_.isOpen() && QFileInfo::exists(path_) ? State::up : State::down;
}

void SerialDeviceLink::startOpening()
{
    // A port whose device has gone may still call itself open.
    port_.close();
    if (!port_.open(QIODevice::ReadWrite))
        problem_ = openingProblem();
}

QString SerialDeviceLink::openingProblem()
{
    const QFileInfo file(path_);
    if (!file.exists()) {
        return QStringLiteral("there is no device \"%1\"; is the adapter plugged in? \"ls "
                              "/dev/tty*\" shows what there is")
            .arg(path_);
    }
    if (::access(QFile::encodeName(path_).constData(), R_OK | W_OK) != 0) {
        return QStringLiteral("no permission for \"%1\"; its group is \"%2\": become a member of "
                              "it (sudo usermod -aG %2 USER, then log in anew)")
            .arg(path_, file.group());
    }
    if (port_.lastError() == E_PERMISSION_DENIED)
        return QStringLiteral("\"%1\" is in use by another program").arg(path_);
    return QStringLiteral("cannot open \"%1\" as a serial port: %2")
        .arg(path_, port_.errorString());
}

} // namespace tovik_host::driver
