#ifndef FRAMEWORK_LINK_IO_H
#define FRAMEWORK_LINK_IO_H

#include <QByteArray>

class DrvEthernet;
class DrvSerial;
class QIODevice;

/// \file
/// What an exchange does with its link, whichever kind it is. None of it complains about a link
/// that is closed or lost: nothing is written, and no input arrives. None of it leaves a trace on
/// the host's socket: Qt counts every wait in vain as an error, so the kernel is asked first.
///
/// A socket without a descriptor is a device of somebody's own that derives from the socket class:
/// it is used as any other device is.
namespace link_io {

/// Pauses the thread; nothing ends the pause early. Negative counts as 0.
void pause(int milliseconds);

/// The bytes that can be read now; 0 where the device says that its line is lost.
qint64 available(const QIODevice* device);

/// Whether the link is closed, closing or lost; a socket that is still connecting is not.
bool isLost(const QIODevice* device);

/// Waits until new input has arrived, at most so long; meanwhile what has been written leaves.
/// Returns at once if the link is closed or lost.
void waitForInput(QIODevice* device, int milliseconds);

/// Throws away what waits on the link: on a serial line also what has not been sent yet, on a TCP
/// link what Qt and the kernel hold at this moment.
/// \param is_wanted on a serial line: whether somebody wants to know what that is
/// \return what has been thrown away, as far as it is known
QByteArray discard(DrvSerial* serial, DrvEthernet* ethernet, bool is_wanted = false);

/// Hands all of \a bytes to the link; sends what the line takes at once. A socket that is still
/// connecting sends them when the connection is there.
/// \return false: the link is down, and has got nothing
bool send(QIODevice* device, const QByteArray& bytes);

/// Waits until everything has been sent, at most so long.
void waitUntilSent(QIODevice* device, int milliseconds);

/// All that can be read at this moment.
QByteArray take(QIODevice* device);

/// All that Qt has fetched already, without a question to the kernel.
///
/// readAll() makes room for 16 KiB first and copies all of that to a smaller place afterwards: for
/// an answer of a few bytes the most expensive part of a request.
QByteArray takeHeld(QIODevice* device);

} // namespace link_io

#endif
