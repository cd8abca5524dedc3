#include "compat/whole_post.h"

#include <QMetaObject>
#include <QNetworkReply>

namespace whole_post {

namespace {

bool hasBody(const QObject* object)
{
    return object->metaObject()->indexOfSlot("wantUploadDataSlot(qint64)") >= 0;
}

QObject* holderOfBody(QNetworkReply* reply)
{
    if (hasBody(reply))
        return reply;
    const QList<QObject*> children = reply->children();
    for (int i = 0; i < children.size(); ++i) {
        if (hasBody(children.at(i)))
            return children.at(i);
    }
    return 0;
}

} // namespace

bool handOverBody(QNetworkReply* reply, qint64 size)
{
    QObject* holder = holderOfBody(reply);
    // Queued: after the start of the request, which post() has queued likewise.
    return holder && QMetaObject::invokeMethod(holder, "wantUploadDataSlot", Qt::QueuedConnection,
                                               Q_ARG(qint64, size));
}

} // namespace whole_post
