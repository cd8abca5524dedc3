#ifndef COMPAT_SERIAL_PORT_H
#define COMPAT_SERIAL_PORT_H

/// \file
/// The serial port class `QextSerialPort`: the machine's own library where it has one
/// (`TOVIK_HAS_QEXTSERIALPORT`, set by the build), else a class of that name and interface over
/// Qt's serial port module.
#ifdef TOVIK_HAS_QEXTSERIALPORT
#include <qextserialport.h>
#else
#include "compat/qext_serial_port.h"
#endif

#endif
