#include "compat/tls_session.h"

#include "compat/session_bytes.h"

#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslConfiguration>
#include <QUrl>

namespace {

const int most_doublings = 13; // ten seconds become 23 hours

#if QT_VERSION >= 0x050200
QString serviceOf(const QUrl& url)
{
    const QUrl::FormattingOptions others =
        QUrl::RemoveUserInfo | QUrl::RemovePath | QUrl::RemoveQuery | QUrl::RemoveFragment;
    return url.toString(others);
}

bool hasOffered(const QNetworkReply& reply)
{
    return !reply.request().sslConfiguration().sessionTicket().isEmpty();
}

/// Whether the service was reached, and ended the conversation without an answer.
bool isBrokenOff(const QNetworkReply& reply)
{
    switch (reply.error()) {
    case QNetworkReply::RemoteHostClosedError:
    case QNetworkReply::SslHandshakeFailedError:
    case QNetworkReply::UnknownNetworkError:
        return true;
    default:
        return false;
    }
}
#endif

} // namespace

bool isResumed(const QNetworkReply& reply)
{
#if QT_VERSION >= 0x050200
    // The service shows its certificate in a full handshake only.
    return hasOffered(reply) && reply.sslConfiguration().peerCertificate().isNull();
#else
    Q_UNUSED(reply);
    return false;
#endif
}

TlsSession::TlsSession(int pause) : pause_(pause), refusals_(0), is_resumed_(false) {}

void TlsSession::offer(QNetworkRequest* request) const
{
#if QT_VERSION >= 0x050200
    QSslConfiguration ssl = request->sslConfiguration();
    ssl.setSslOption(QSsl::SslOptionDisableSessionPersistence, false);
    if (serviceOf(request->url()) == service_)
        ssl.setSessionTicket(bytes_);
    request->setSslConfiguration(ssl);
#else
    Q_UNUSED(request);
#endif
}

void TlsSession::take(const QNetworkReply& reply)
{
#if QT_VERSION >= 0x050200
    const bool has_offered = hasOffered(reply);
    const bool is_answered = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid();
    if (!is_answered) {
        if (has_offered && isBrokenOff(reply))
            refuse();
        return;
    }
    if (has_offered)
        refusals_ = 0;
    is_resumed_ = ::isResumed(reply);
    if (isPausing())
        return;
    bytes_ = session_bytes::withoutCertificate(reply.sslConfiguration().sessionTicket());
    service_ = serviceOf(reply.request().url());
#else
    Q_UNUSED(reply);
#endif
}

/// An interrupted line looks the same as a service that refuses; so it is tried again, and again
/// after a longer time.
void TlsSession::refuse()
{
    bytes_.clear();
    ++refusals_;
    since_refusal_.start();
}

bool TlsSession::isPausing() const
{
    if (refusals_ == 0)
        return false;
    const qint64 pause = qint64(pause_) << qMin(refusals_ - 1, most_doublings);
    return !since_refusal_.hasExpired(pause);
}
