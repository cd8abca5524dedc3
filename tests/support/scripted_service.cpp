#include "tests/support/scripted_service.h"

#include <QSslCertificate>
#include <QSslKey>
#include <QSslSocket>

namespace {

/// Takes a whole request out of \a bytes; false while there is none.
bool parse(const QByteArray& bytes, ScriptedRequest* request)
{
    const int end = bytes.indexOf("\r\n\r\n");
    if (end < 0)
        return false;
    QList<QByteArray> lines = bytes.left(end).split('\n');
    request->path = lines.takeFirst().split(' ').value(1);
    for (const QByteArray& line : lines) {
        const int colon = line.indexOf(':');
        request->headers.insert(line.left(colon).trimmed().toLower(),
                                line.mid(colon + 1).trimmed());
    }
    const int length = request->headers.value(QByteArray("content-length")).toInt();
    request->body = bytes.mid(end + 4);
    return request->body.size() >= length;
}

} // namespace

ScriptedReply ScriptedReply::json(const QByteArray& body)
{
    return status(200, body);
}

ScriptedReply ScriptedReply::status(int code, const QByteArray& body)
{
    return raw(QByteArray("HTTP/1.1 ") + QByteArray::number(code) +
               QByteArray(" Status\r\nContent-Type: application/json\r\nConnection: close\r\n"
                          "Content-Length: ") +
               QByteArray::number(body.size()) + QByteArray("\r\n\r\n") + body);
}

ScriptedReply ScriptedReply::raw(const QByteArray& bytes)
{
    ScriptedReply reply;
    reply.bytes = bytes;
    return reply;
}

ScriptedReply ScriptedReply::hang()
{
    ScriptedReply reply;
    reply.action = Hang;
    return reply;
}

ScriptedReply ScriptedReply::close()
{
    ScriptedReply reply;
    reply.action = Close;
    return reply;
}

ScriptedService::ScriptedService()
{
    if (!listen(QHostAddress::LocalHost, 0))
        qFatal("no free port");
}

ScriptedService::ScriptedService(const TestCertificate& certificate) : ScriptedService()
{
    certificate_ = certificate;
}

QString ScriptedService::url() const
{
    const QLatin1String scheme(certificate_.certificate.isEmpty() ? "http" : "https");
    return QString(QLatin1String("%1://127.0.0.1:%2")).arg(scheme).arg(serverPort());
}

void ScriptedService::queue(const QByteArray& json)
{
    queue_.enqueue(ScriptedReply::json(json));
}

void ScriptedService::queue(const ScriptedReply& reply)
{
    queue_.enqueue(reply);
}

void ScriptedService::setHandler(const Handler& handler)
{
    handler_ = handler;
}

void ScriptedService::reset()
{
    queue_.clear();
    requests_.clear();
}

const QList<ScriptedRequest>& ScriptedService::requests() const
{
    return requests_;
}

QList<QByteArray> ScriptedService::paths() const
{
    QList<QByteArray> paths;
    for (const ScriptedRequest& request : requests_)
        paths.append(request.path);
    return paths;
}

QList<QByteArray> ScriptedService::bodies() const
{
    QList<QByteArray> bodies;
    for (const ScriptedRequest& request : requests_)
        bodies.append(request.body);
    return bodies;
}

void ScriptedService::incomingConnection(qintptr descriptor)
{
    QTcpSocket* socket = nullptr;
    if (certificate_.certificate.isEmpty()) {
        socket = new QTcpSocket(this);
        socket->setSocketDescriptor(descriptor);
    } else {
        QSslSocket* ssl = new QSslSocket(this);
        ssl->setSocketDescriptor(descriptor);
        ssl->setLocalCertificate(QSslCertificate(certificate_.certificate));
        ssl->setPrivateKey(QSslKey(certificate_.key, QSsl::Ec));
        ssl->startServerEncryption();
        socket = ssl;
    }
    connect(socket, &QTcpSocket::readyRead, this, [this, socket] { receive(socket); });
    connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
        received_.remove(socket);
        socket->deleteLater();
    });
}

void ScriptedService::receive(QTcpSocket* socket)
{
    QByteArray& bytes = received_[socket];
    ScriptedRequest request;
    request.came_at_once = bytes.isEmpty();
    bytes += socket->readAll();
    if (!parse(bytes, &request))
        return;
    bytes.clear();
    requests_.append(request);
    answer(socket, request);
}

void ScriptedService::answer(QTcpSocket* socket, const ScriptedRequest& request)
{
    ScriptedReply reply = ScriptedReply::json(QByteArray("{\"errorcode\":0}"));
    if (!queue_.isEmpty())
        reply = queue_.dequeue();
    else if (handler_)
        reply = handler_(request);
    if (reply.action == ScriptedReply::Hang)
        return;
    if (reply.action == ScriptedReply::Answer)
        socket->write(reply.bytes);
    socket->disconnectFromHost();
}
