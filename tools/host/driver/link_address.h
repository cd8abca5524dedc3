#ifndef TOOLS_HOST_DRIVER_LINK_ADDRESS_H
#define TOOLS_HOST_DRIVER_LINK_ADDRESS_H

#include "interface/drv_serial.h"

#include <QString>

#include <variant>

namespace tovik_host::driver {

/// A device behind a TCP port.
struct TcpAddress
{
    QString host; ///< A name or an address; an IPv6 address stands without brackets.
    quint16 port = 0;
};

/// A device on a serial line.
struct SerialAddress
{
    QString device;
    BaudRateType baud_rate = BAUD9600;
    DataBitsType data_bits = DATA_8;
    ParityType parity = PAR_NONE;
    StopBitsType stop_bits = STOP_1;
    FlowType flow = FLOW_OFF;
};

using LinkAddress = std::variant<TcpAddress, SerialAddress>;

/// Reads `tcp:HOST:PORT`, `tcp:[IPV6]:PORT` or `serial:DEVICE[,BAUD[,FRAME[,FLOW]]]`.
///
/// FRAME is data bits (5 to 8), parity (N, E, O, M, S) and stop bits (1, 2), such as 8N1; FLOW is
/// none, rtscts or xonxoff. What is left out is 9600,8N1,none. Throws UsageError.
/// \param origin what the message names as the source of the address.
LinkAddress parseLink(const QString& text, const QString& origin);

/// The address as parseLink() reads it, with nothing left out but `none`.
QString linkText(const LinkAddress& address);

} // namespace tovik_host::driver

#endif
