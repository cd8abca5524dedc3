#ifndef COMPAT_TLS_SESSION_H
#define COMPAT_TLS_SESSION_H

#include <QByteArray>
#include <QElapsedTimer>
#include <QString>

class QNetworkReply;
class QNetworkRequest;
class QUrl;

/// The TLS session that a client's requests hand on to each other, so that each of them, with a
/// connection of its own all the same, needs the short handshake only: without a key exchange to be
/// signed by the service, and with TLS 1.2 a round trip shorter. In memory alone. A service that
/// does not know the session makes a full handshake of it, which is how TLS works.
///
/// Where Qt has no such sessions (before 5.2), nothing happens.
class TlsSession
{
public:
    /// Milliseconds. A panel's values have come back by then, with full handshakes.
    static const int usual_pause = 10000;

    /// \param pause how long requests make full handshakes when the service has given no answer to
    ///        one that offered a session; twice as long each time that happens in a row, up to a
    ///        day. So a service that ends such connections costs a failed request now and then.
    explicit TlsSession(int pause = usual_pause);

    /// Has \a request offer the session to the service that it came from.
    void offer(QNetworkRequest* request) const;
    /// Takes the session of a request that has finished, or forgets the one that it offered in
    /// vain.
    void take(const QNetworkReply& reply);
    /// Whether the latest request with an answer has resumed a session.
    bool isResumed() const { return is_resumed_; }

private:
    void refuse();
    bool isPausing() const;

    QByteArray bytes_;
    QString service_; ///< Scheme, host and port: nobody else's business.
    int pause_;
    int refusals_; ///< In a row.
    QElapsedTimer since_refusal_;
    bool is_resumed_;
};

/// Whether \a reply, whose header has arrived, came with a session that its request had offered.
bool isResumed(const QNetworkReply& reply);

#endif
