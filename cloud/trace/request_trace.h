#ifndef CLOUD_TRACE_REQUEST_TRACE_H
#define CLOUD_TRACE_REQUEST_TRACE_H

#include "compat/new_sockets.h"
#include "interface/traffic.h"

#include <QHostInfo>
#include <QList>
#include <QObject>
#include <QTimer>
#include <QUrl>

class QNetworkReply;

/// Tells a listener how one request goes, moment by moment, without its secrets.
///
/// Qt tells when the handshake is done and when the reply's header is there. The name is looked up
/// once more, which waits for the request's own look-up and costs no other; and for the connection
/// the process's new sockets are looked at every millisecond, as somebody listens.
class RequestTrace : public QObject
{
    Q_OBJECT

public:
    /// To be made before the request begins.
    /// \param listener not owned
    /// \param number of the request
    RequestTrace(TrafficListener* listener, int number, const QUrl& url);

    /// The request begins.
    void begin(const QByteArray& body);
    /// To be called in the thread that has posted, before its event loop runs again.
    void watch(QNetworkReply* reply);
    /// The reply has finished, with \a body.
    void end(const QByteArray& body);

private Q_SLOTS:
    void onName(const QHostInfo& info);
    void onEncrypted();
    void onHeader();
    void lookForSocket();

private:
    Q_DISABLE_COPY(RequestTrace)

    void tell(Traffic::Kind kind, const QString& text = QString(),
              const QByteArray& bytes = QByteArray(), int code = 0);

    TrafficListener* listener_;
    int number_;
    QUrl url_;
    NewSockets sockets_;
    QTimer looks_;
    QList<QHostAddress> addresses_;
    QList<QByteArray> secrets_;
    QNetworkReply* reply_;
};

#endif
