#ifndef CLOUD_POST_H
#define CLOUD_POST_H

#include "compat/prompt_request.h"
#include "compat/tls_session.h"

#include <QNetworkAccessManager>
#include <QObject>
#include <QScopedPointer>
#include <QString>

#include <string>

class QNetworkReply;
class RequestTrace;
class TrafficListener;

/// What the posts of a client hand on to each other, all of them in one thread: what makes the next
/// one cheaper, and changes nothing of what it says.
struct PostMemory
{
    PostMemory() : listener(0), count(0) {}

    TlsSession session;
    SocketNumbers sockets;
    TrafficListener* listener; ///< Hears of the posts; null: nobody does. Not owned.
    int count;                 ///< Posts of which it has heard.
};

/// One post of a JSON body, on its way from its making on. It has a connection of its own, takes
/// any certificate, and knows no time-out. To be used, and deleted, in the thread that made it;
/// deleted early, it ends at once.
class Post : public QObject
{
    Q_OBJECT

public:
    /// Posts \a body, in the local encoding, to \a url.
    /// \param memory not owned
    Post(const QString& body, const QString& url, PostMemory* memory);
    ~Post();

    /// Runs an event loop until the reply has finished, or the thread is told to quit. The post may
    /// have been deleted when it returns.
    void wait();
    /// The reply's body up to its first NUL; empty while there is none. Logs a transport error;
    /// what arrived is returned all the same. To be called once.
    std::string takeBytes();
    /// Whether the transport has failed; false as well while the reply has not finished.
    bool hasFailed() const;
    /// The transport error in Qt's words.
    QString problem() const;

Q_SIGNALS:
    /// The whole reply is there, or the transport has failed. Nobody deletes the post inside.
    void EmitFinished();

private Q_SLOTS:
    void takeSession();

private:
    Q_DISABLE_COPY(Post)

    PostMemory* memory_;
    QScopedPointer<RequestTrace> trace_; ///< Null unless somebody listens.
    PromptRequest prompt_;
    QNetworkAccessManager manager_;
    QNetworkReply* reply_;
};

#endif
