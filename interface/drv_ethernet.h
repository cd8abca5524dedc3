#ifndef INTERFACE_DRV_ETHERNET_H
#define INTERFACE_DRV_ETHERNET_H

#include "compat/export.h"
#include "interface/drv_base.h"

#include <QTcpSocket>

/// A TCP link: the host's socket with the host's settings.
class TOVIK_EXPORT DrvEthernet : public QTcpSocket, public DrvBase
{
    Q_OBJECT

public:
    /// A socket that is not connected, with the default settings.
    explicit DrvEthernet(QObject* parent = 0);
    ~DrvEthernet();

Q_SIGNALS:
#ifndef Q_MOC_RUN
public: // In Qt 4 signals are protected otherwise, and a host emits these.
#endif

    /// The host emits this just before it releases the link. Drivers stop using it before the
    /// emission returns: the connection is direct, in the emitting thread.
    void EmitNotifyBeforeRelease();
};

#endif
