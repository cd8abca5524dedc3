#ifndef FRAMEWORK_LINK_IO_H
#define FRAMEWORK_LINK_IO_H

#include <QByteArray>

class DrvEthernet;
class DrvSerial;
class QIODevice;

/// \file
/// What an exchange does with its link, whichever kind it is. None of it complains about a link
/// that is closed or lost: nothing is written, and no input arrives.
namespace link_io {

/// Pauses the thread; nothing ends the pause early. Negative counts as 0.
void pause(int milliseconds);

/// Waits until new input has arrived, at most so long. Returns at once if the link is down.
void waitForInput(QIODevice* device, int milliseconds);

/// Throws away what waits on the link: on a serial line also what has not been sent yet, on a TCP
/// link what Qt and the kernel hold at this moment.
void discard(DrvSerial* serial, DrvEthernet* ethernet);

/// Hands all of \a bytes to the link; sends what the line takes at once.
void send(QIODevice* device, const QByteArray& bytes);

/// Waits until everything has been sent, at most so long.
void waitUntilSent(QIODevice* device, int milliseconds);

/// All that can be read at this moment.
QByteArray take(QIODevice* device);

} // namespace link_io

#endif
