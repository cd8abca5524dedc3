#ifndef TOOLS_HOST_DRIVER_TCP_DEVICE_LINK_H
#define TOOLS_HOST_DRIVER_TCP_DEVICE_LINK_H

#include "tools/host/driver/device_link.h"

namespace tovik_host::driver {

/// A TCP connection to a device.
class TcpDeviceLink : public DeviceLink
{
public:
    TcpDeviceLink(const TcpAddress& address, const LinkSettings& settings);

    DrvEthernet* ethernet() override { return &socket_; }
    void announceRelease() override;

protected:
    State state() override;
    void startOpening() override;
    void giveUpOpening() override;

private:
    void onError(QAbstractSocket::SocketError error);

    TcpAddress address_;
    DrvEthernet socket_;
};

} // namespace tovik_host::driver

#endif
