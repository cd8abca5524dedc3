#ifndef COMPAT_WRITE_CHANNEL_H
#define COMPAT_WRITE_CHANNEL_H

#include <QIODevice>

/// \file
/// Whether an open device can still be written to.
namespace write_channel {

/// False for a socket that has lost its connection and was not closed: it stays open, and a write
/// to it changes its error. Qt 4 does not tell, and the answer is true there.
inline bool isThere(const QIODevice& device)
{
#if QT_VERSION >= 0x050700
    return device.writeChannelCount() > 0;
#else
    return device.isWritable();
#endif
}

} // namespace write_channel

#endif
