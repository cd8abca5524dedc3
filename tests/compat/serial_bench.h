#ifndef TESTS_COMPAT_SERIAL_BENCH_H
#define TESTS_COMPAT_SERIAL_BENCH_H

#include "compat/serial_port.h"

#include <QElapsedTimer>
#include <QThread>

/// Settings that no default has.
const PortSettings other_settings = {BAUD19200, DATA_7, PAR_EVEN, STOP_2, FLOW_XONXOFF, 250};

/// Settings in the form in which rows compare them.
inline QList<int> settingsOf(const QextSerialPort& port)
{
    return QList<int>{port.baudRate(), port.dataBits(), port.parity(), port.stopBits(),
                      port.flowControl()};
}

const int patience = 10000; // milliseconds; reached only by a failing test

/// Waits without an event loop, as code does that polls a port.
template <typename Condition>
bool becomesTrue(Condition condition)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.hasExpired(patience))
            return false;
        QThread::yieldCurrentThread();
    }
    return true;
}

inline bool arrives(const QextSerialPort& port, qint64 size)
{
    return becomesTrue([&] { return port.bytesAvailable() >= size; });
}

inline QByteArray someBytes(int size)
{
    QByteArray bytes;
    for (int i = 0; i < size; ++i)
        bytes.append(char(i * 7 + i / 256));
    return bytes;
}

#endif
