#include "framework/link_io.h"

#include "interface/drv_ethernet.h"
#include "interface/drv_serial.h"

#include <QElapsedTimer>
#include <QMutex>
#include <QWaitCondition>

namespace link_io {

namespace {

/// All that Qt holds for the device. Its readAll() makes room for 16 KiB first and copies all of
/// that to a smaller place afterwards: for an answer of a few bytes the most expensive part of a
/// request.
QByteArray takeHeld(QIODevice* device)
{
    return device->read(device->bytesAvailable());
}

/// Qt warns when a socket without a connection, or a closed device, is used.
bool isUp(const QIODevice* device)
{
    if (!device || !device->isOpen())
        return false;
    const QAbstractSocket* socket = qobject_cast<const QAbstractSocket*>(device);
    return !socket || socket->state() == QAbstractSocket::ConnectedState;
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

void waitForInput(QIODevice* device, int milliseconds)
{
    if (isUp(device))
        device->waitForReadyRead(milliseconds);
}

void discard(DrvSerial* serial, DrvEthernet* ethernet)
{
    if (!serial) {
        take(ethernet);
        return;
    }
    serial->flush();
    // What a driver has peeked at is in none of the port's buffers any more; the port class of the
    // machine's own library leaves it where it is.
    if (serial->bytesAvailable() > 0)
        takeHeld(serial);
}

void send(QIODevice* device, const QByteArray& bytes)
{
    if (!isUp(device))
        return;
    device->write(bytes);
    // Without an event loop a socket sends nothing by itself; a serial port has sent already.
    if (QAbstractSocket* socket = qobject_cast<QAbstractSocket*>(device))
        socket->flush();
}

void waitUntilSent(QIODevice* device, int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    qint64 left = milliseconds;
    // Each wait ends with the first bytes that the line takes.
    while (left > 0 && isUp(device) && device->bytesToWrite() > 0 &&
           device->waitForBytesWritten(static_cast<int>(left)))
        left = milliseconds - timer.elapsed();
}

QByteArray take(QIODevice* device)
{
    if (!device || !device->isReadable())
        return QByteArray();
    // Qt fetches from the kernel only when it is asked to wait.
    waitForInput(device, 0);
    // The far end may just have closed: what it had sent before can still be read.
    return device->isReadable() ? takeHeld(device) : QByteArray();
}

} // namespace link_io
