#include "framework/link_io.h"

#include "compat/write_channel.h"
#include "interface/drv_ethernet.h"
#include "interface/drv_serial.h"

#include <QElapsedTimer>
#include <QMutex>
#include <QWaitCondition>

#include <poll.h>

namespace link_io {

namespace {

/// The device as a socket whose connection the kernel has; else null.
QAbstractSocket* connectedSocket(QIODevice* device)
{
    QAbstractSocket* socket = qobject_cast<QAbstractSocket*>(device);
    const bool is_connected = socket && socket->state() == QAbstractSocket::ConnectedState;
    return is_connected && socket->socketDescriptor() != -1 ? socket : 0;
}

bool isConnecting(const QIODevice* device)
{
    const QAbstractSocket* socket = qobject_cast<const QAbstractSocket*>(device);
    return socket && (socket->state() == QAbstractSocket::HostLookupState ||
                      socket->state() == QAbstractSocket::ConnectingState);
}

/// Whether the device is open, and neither closing nor lost.
bool isUp(const QIODevice* device)
{
    if (!device || !device->isOpen())
        return false;
    const QAbstractSocket* socket = qobject_cast<const QAbstractSocket*>(device);
    if (!socket || socket->state() == QAbstractSocket::ConnectedState || isConnecting(socket))
        return true;
    return socket->state() == QAbstractSocket::UnconnectedState && write_channel::isThere(*socket);
}

/// Waits for the kernel to have input or to take what has been written, at most so long, and has Qt
/// fetch the input and send the output.
/// \return what the kernel reported
int serve(QAbstractSocket* socket, int milliseconds)
{
    const int events = socket->bytesToWrite() > 0 ? POLLIN | POLLOUT : POLLIN;
    pollfd kernel = {static_cast<int>(socket->socketDescriptor()), static_cast<short>(events), 0};
    if (poll(&kernel, 1, milliseconds) <= 0)
        return 0;
    if ((kernel.revents & POLLOUT) != 0)
        socket->flush();
    if ((kernel.revents & ~POLLOUT) != 0 && socket->state() == QAbstractSocket::ConnectedState)
        socket->waitForReadyRead(0);
    return kernel.revents;
}

void waitForSocket(QAbstractSocket* socket, int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    qint64 left = milliseconds;
    do {
        if ((serve(socket, static_cast<int>(left)) & ~POLLOUT) != 0)
            return;
        left = milliseconds - timer.elapsed();
    } while (left > 0 && connectedSocket(socket));
}

void waitForDevice(QIODevice* device, int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    const qint64 before = device->bytesAvailable();
    // Qt's own wait takes the descriptor of a connected socket for granted.
    const QAbstractSocket* socket = qobject_cast<const QAbstractSocket*>(device);
    const bool can_wait = !socket || socket->state() != QAbstractSocket::ConnectedState;
    if (can_wait && device->waitForReadyRead(milliseconds))
        return;
    // A port of the machine's own serial port library cannot wait: it returns at once.
    while (timer.elapsed() < milliseconds && device->isOpen() && before >= 0 &&
           device->bytesAvailable() == before)
        pause(1);
}

} // namespace

void pause(int milliseconds)
{
    // Even a wait that is over at once takes the kernel's timers 50 us.
    if (milliseconds <= 0)
        return;
    QMutex mutex;
    QWaitCondition nobody;
    QMutexLocker locker(&mutex);
    nobody.wait(&mutex, static_cast<unsigned long>(milliseconds));
}

qint64 available(const QIODevice* device)
{
    return qMax(qint64(0), device->bytesAvailable());
}

bool isLost(const QIODevice* device)
{
    if (!isUp(device) || device->bytesAvailable() < 0)
        return true;
    // Without an event loop a serial line that has hung up stays open.
    const QextSerialPort* port = qobject_cast<const QextSerialPort*>(device);
    return port && (port->lastError() == E_IO_ERROR || port->lastError() == E_READ_FAILED);
}

void waitForInput(QIODevice* device, int milliseconds)
{
    const int time = qMax(0, milliseconds);
    if (!isUp(device))
        return;
    if (isConnecting(device))
        pause(time); // Qt gives the attempt up when its own wait is over
    else if (QAbstractSocket* socket = connectedSocket(device))
        waitForSocket(socket, time);
    else
        waitForDevice(device, time);
}

QByteArray discard(DrvSerial* serial, DrvEthernet* ethernet, bool is_wanted)
{
    if (!serial)
        return take(ethernet);
    const QByteArray known = is_wanted ? takeHeld(serial) : QByteArray();
    serial->flush();
    // What a driver has peeked at is in none of the port's buffers any more; the port class of the
    // machine's own library leaves it where it is.
    return known + takeHeld(serial);
}

bool send(QIODevice* device, const QByteArray& bytes)
{
    if (!isUp(device) || !device->isWritable())
        return false;
    device->write(bytes);
    // Without an event loop a socket sends nothing by itself; a serial port has sent already.
    if (QAbstractSocket* socket = connectedSocket(device))
        socket->flush();
    return true;
}

void waitUntilSent(QIODevice* device, int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    // Each wait ends with the first bytes that the line takes.
    for (qint64 left = milliseconds; left > 0; left = milliseconds - timer.elapsed()) {
        if (!isUp(device) || device->bytesToWrite() == 0)
            return;
        if (QAbstractSocket* socket = connectedSocket(device))
            serve(socket, static_cast<int>(left));
        else if (qobject_cast<QAbstractSocket*>(device) ||
                 !device->waitForBytesWritten(static_cast<int>(left)))
            return; // a connection that is being made is the event loop's
    }
}

QByteArray takeHeld(QIODevice* device)
{
    const qint64 held = device->isReadable() ? available(device) : 0;
    return held > 0 ? device->read(held) : QByteArray();
}

QByteArray take(QIODevice* device)
{
    if (!device || !device->isReadable())
        return QByteArray();
    if (QAbstractSocket* socket = connectedSocket(device))
        serve(socket, 0);
    else if (!qobject_cast<QextSerialPort*>(device))
        return device->readAll(); // which asks a device that does not count its bytes
    // The far end may just have closed: what it had sent before can still be read.
    return takeHeld(device);
}

} // namespace link_io
