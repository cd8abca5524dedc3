#ifndef TOOLS_HOST_DRIVER_DEVICE_CONFIG_H
#define TOOLS_HOST_DRIVER_DEVICE_CONFIG_H

#include "tools/host/config/config.h"

#include "interface/drv_base.h"
#include "interface/drv_serial.h"

#include <QString>
#include <QStringList>

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

/// What the driver finds in its link; times in milliseconds.
struct LinkSettings
{
    int request_delay = 0;
    int response_timeout = 1000; ///< The library's own 10 ms are too short for most devices.
    int retries = 0;
    int link_param_a = 0;
    int link_param_b = 255;

    /// Hands the settings to a link.
    void fill(DrvBase* link) const;
};

/// A device, and what is wanted of it.
struct DeviceConfig
{
    LinkAddress link;
    LinkSettings settings;
    QString unit = u"tovik-host"_s;
    int open_milliseconds = 10000;     ///< The longest that an attempt to open the link may take.
    QVector<config::ItemConfig> items; ///< Those that the command is about, in its order.
};

/// Whether the options are about a device on a link, and not about a service: the command line or
/// the configuration names a link. Throws UsageError when the configuration cannot be read.
bool isForDevice(const config::CommonOptions& common);

/// The same of a command that is for both. Throws UsageError, too, if there is an option that only
/// a device has, and no device.
bool meansDevice(const config::CommonOptions& common);

/// Puts options and configuration together; options win.
///
/// \param addresses what the command line says. With a configuration these are names of its items,
///        and none of them means all; without one they are `ADDRESS` or `ADDRESS=TYPE`.
/// \param warnings takes what the user should know.
/// Throws UsageError.
DeviceConfig deviceConfig(const config::CommonOptions& common, const QStringList& addresses,
                          QStringList* warnings);

} // namespace tovik_host::driver

#endif
