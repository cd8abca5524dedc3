#ifndef TESTS_SUPPORT_SCRIPTED_SERVICE_H
#define TESTS_SUPPORT_SCRIPTED_SERVICE_H

#include "tests/support/test_certificate.h"

#include <QHash>
#include <QList>
#include <QQueue>
#include <QTcpServer>

#include <functional>

class QTcpSocket;

/// One request as the service received it.
struct ScriptedRequest
{
    QByteArray path;
    QHash<QByteArray, QByteArray> headers; ///< Names in lower case.
    QByteArray body;
    bool came_at_once = true; ///< Header and body were there together at the first look.
};

/// What the service does with a request: it may answer, or misbehave.
struct ScriptedReply
{
    enum Action
    {
        Answer,
        Hang,
        Close
    };

    Action action = Answer;
    QByteArray bytes; ///< Sent as they are; the connection is closed after them.

    /// A well-formed answer with status 200.
    static ScriptedReply json(const QByteArray& body);
    static ScriptedReply status(int code, const QByteArray& body);
    /// Any bytes at all in place of an answer.
    static ScriptedReply raw(const QByteArray& bytes);
    /// No answer; the connection stays open.
    static ScriptedReply hang();
    /// No answer; the connection is closed.
    static ScriptedReply close();
};

/// An HTTP or HTTPS service in the test's own thread, on a free port of the loopback interface. It
/// answers from a queue, then by a handler, then with `{"errorcode":0}`, and records the requests.
class ScriptedService : public QTcpServer
{
    Q_OBJECT

public:
    using Handler = std::function<ScriptedReply(const ScriptedRequest&)>;

    /// Plain HTTP.
    ScriptedService();
    /// HTTPS with \a certificate.
    explicit ScriptedService(const TestCertificate& certificate);

    /// The base URL, without a slash at the end.
    QString url() const;
    /// Queues an answer with status 200.
    void queue(const QByteArray& json);
    void queue(const ScriptedReply& reply);
    void setHandler(const Handler& handler);
    /// Forgets queued answers and recorded requests.
    void reset();

    const QList<ScriptedRequest>& requests() const;
    QList<QByteArray> paths() const;
    QList<QByteArray> bodies() const;

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    void receive(QTcpSocket* socket);
    void answer(QTcpSocket* socket, const ScriptedRequest& request);

    TestCertificate certificate_;
    QQueue<ScriptedReply> queue_;
    Handler handler_;
    QList<ScriptedRequest> requests_;
    QHash<QTcpSocket*, QByteArray> received_;
};

#endif
