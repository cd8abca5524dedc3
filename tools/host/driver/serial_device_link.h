#ifndef TOOLS_HOST_DRIVER_SERIAL_DEVICE_LINK_H
#define TOOLS_HOST_DRIVER_SERIAL_DEVICE_LINK_H

#include "tools/host/driver/device_link.h"

namespace tovik_host::driver {

/// A serial line to a device. A port whose adapter is unplugged is down until it is back.
class SerialDeviceLink : public DeviceLink
{
public:
    SerialDeviceLink(const SerialAddress& address, const LinkSettings& settings);

    DrvSerial* serial() override { return &port_; }

protected:
    State state() override;
    void startOpening() override;
    void giveUpOpening() override {}

private:
    QString openingProblem();

    QString path_;
    DrvSerial port_;
};

} // namespace tovik_host::driver

#endif
