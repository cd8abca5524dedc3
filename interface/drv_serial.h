#ifndef INTERFACE_DRV_SERIAL_H
#define INTERFACE_DRV_SERIAL_H

#include "compat/export.h"
#include "compat/serial_port.h"
#include "interface/drv_base.h"

/// A serial link: the host's port with the host's settings. It has no signals or slots of its own.
class TOVIK_EXPORT DrvSerial : public QextSerialPort, public DrvBase
{
    Q_OBJECT

public:
    /// A port without a name, closed, with the default settings.
    explicit DrvSerial(QObject* parent = 0);
    /// A closed port of the device \a port_name, for example `/dev/ttyS0`.
    explicit DrvSerial(const QString& port_name, QObject* parent = 0);
    ~DrvSerial();
};

#endif
