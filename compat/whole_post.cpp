#include "compat/whole_post.h"

#include <QCoreApplication>
#include <QEvent>
#include <QMetaObject>
#include <QNetworkReply>

namespace whole_post {

namespace {

bool hasBody(const QObject* object)
{
    return object->metaObject()->indexOfSlot("wantUploadDataSlot(qint64)") != -1;
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

/// Hands the body over once the request has begun, or never. Belongs to what holds the body.
class HandOver : public QObject
{
public:
    HandOver(QObject* holder, qint64 size) : QObject(holder), size_(size) {}

protected:
    void customEvent(QEvent*)
    {
        if (isWanted())
            QMetaObject::invokeMethod(parent(), "wantUploadDataSlot", Q_ARG(qint64, size_));
        deleteLater();
    }

private:
    /// Whether a network thread takes the body. There is none for a request that Qt does not
    /// begin, and Qt 4.8 uses a body then that it has not made.
    bool isWanted() const
    {
        // What is protected belongs to us by way of our own class only.
        int (QObject::*const receivers_of)(const char*) const = &HandOver::receivers;
        return (parent()->*receivers_of)(SIGNAL(haveUploadData(qint64, QByteArray, bool, qint64))) >
               0;
    }

    qint64 size_;
};

} // namespace

bool handOverBody(QNetworkReply* reply, qint64 size)
{
    QObject* holder = holderOfBody(reply);
    if (!holder)
        return false;
    // Queued: after the start of the request, which post() has queued likewise.
    QCoreApplication::postEvent(new HandOver(holder, size), new QEvent(QEvent::User));
    return true;
}

} // namespace whole_post
