#ifndef COMPAT_WHOLE_POST_H
#define COMPAT_WHOLE_POST_H

#include <QtGlobal>

class QNetworkReply;

/// \file
/// Posts whose header and body leave together.
namespace whole_post {

/// Hands the body of a post over to Qt's network thread before that asks for it.
///
/// Qt writes the header first and asks for the body then, which lies in the thread that posted; and
/// it leaves Nagle's algorithm on. So the body waits until the service has acknowledged the header:
/// a round trip, or the 40 ms and more of a delayed acknowledgement, with every single request.
/// With the body at hand, Qt writes both at once. The bytes on the wire are the same. This holds
/// for HTTPS and up to 4 KiB of header and body together; plain HTTP and longer posts still go out
/// in two writes.
///
/// The object that hands the body over is the reply itself in Qt 5 and a child of it in Qt 4.8; it
/// is found by its slot `wantUploadDataSlot(qint64)`. Where there is none, nothing happens: the
/// post is slower, and complete. Nothing is handed over either when Qt never begins the request,
/// as with an application's proxy that cannot carry it.
///
/// To be called in the thread that has posted, before its event loop runs again. Never blocks.
/// \param size bytes of the body
/// \return whether the slot was found
bool handOverBody(QNetworkReply* reply, qint64 size);

} // namespace whole_post

#endif
