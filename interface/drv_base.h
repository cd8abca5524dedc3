#ifndef INTERFACE_DRV_BASE_H
#define INTERFACE_DRV_BASE_H

#include "compat/export.h"

#include <QMap>
#include <QString>
#include <QVariant>

/// What a serial and a TCP link have in common: the host's settings for the link.
///
/// The host fills the members before it hands the link to `create_drvlib`. A driver reads them in
/// the host's thread while it is constructed, and again when the host emits
/// `DrvInterface::SigUpdateDrvSerial` or `SigUpdateDrvEthernet`.
class TOVIK_EXPORT DrvBase
{
public:
    /// A link with the defaults below, without a name and without driver-specific data.
    DrvBase();
    virtual ~DrvBase();

    /// Returns a copy of the driver-specific setting \a key.
    ///
    /// The look-up inserts: a key that the host did not set is added with an invalid variant, whose
    /// integer value is 0 and whose boolean value is false.
    QVariant GetDriverSpecificData(const QString& key);

    /// The host's name of the link.
    QString link_name;
    /// Settings of the driver by key; see docs/configuration.md for those of the cloud driver.
    QMap<QString, QVariant> driver_specific_data;

    /// Pause before every request frame, in milliseconds. Default 0.
    int request_delay;
    /// Time budget for an answer in transparent mode, in milliseconds. Default 10.
    int response_timeout;
    /// Repeats after a failed attempt. Default 0.
    int retry_count;
    /// Carried for protocol drivers. Default 0.
    int link_param_a;
    /// Carried for protocol drivers. Default 255.
    int link_param_b;
};

#endif
