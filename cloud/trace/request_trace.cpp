#include "cloud/trace/request_trace.h"

#include "cloud/trace/secrets.h"
#include "compat/tls_session.h"

#include <QNetworkReply>
#include <QNetworkRequest>
#include <QStringList>
#include <QVector>

namespace {

quint16 portOf(const QUrl& url)
{
    return quint16(url.port(url.scheme() == QLatin1String("https") ? 443 : 80));
}

} // namespace

RequestTrace::RequestTrace(TrafficListener* listener, int number, const QUrl& url)
    : listener_(listener),
      number_(number),
      url_(url),
      sockets_(QVector<int>()),
      reply_(0),
      has_header_(false)
{
    looks_.setInterval(1);
    connect(&looks_, SIGNAL(timeout()), this, SLOT(lookForSocket()));
}

void RequestTrace::tell(Traffic::Kind kind, const QByteArray& bytes, int code, const QString& text)
{
    Traffic traffic(kind, bytes, code, text);
    traffic.number = number_;
    listener_->hear(traffic);
}

void RequestTrace::begin(const QByteArray& body)
{
    secrets_ = secrets::in(body);
    QUrl shown = url_;
    shown.setUserInfo(QString());
    tell(Traffic::asked, secrets::blotted(body), 0, QLatin1String("POST ") + shown.toString());
}

void RequestTrace::watch(QNetworkReply* reply)
{
    reply_ = reply;
    connect(reply, SIGNAL(metaDataChanged()), this, SLOT(onHeader()));
#if QT_VERSION >= 0x050100
    connect(reply, SIGNAL(encrypted()), this, SLOT(onEncrypted()));
#endif
    looks_.start();
    const QHostAddress address(url_.host());
    if (address.isNull())
        QHostInfo::lookupHost(url_.host(), this, SLOT(onName(QHostInfo)));
    else
        addresses_ << address;
}

void RequestTrace::onName(const QHostInfo& info)
{
    addresses_ = info.addresses();
    QStringList texts;
    for (int i = 0; i < addresses_.size(); ++i)
        texts << addresses_.at(i).toString();
    tell(Traffic::named, QByteArray(), 0, texts.join(QLatin1String(", ")));
    lookForSocket();
}

void RequestTrace::lookForSocket()
{
    if (!looks_.isActive() || sockets_.connectedTo(addresses_, portOf(url_)).isEmpty())
        return;
    looks_.stop();
    tell(Traffic::connected);
}

void RequestTrace::onEncrypted()
{
    lookForSocket();
    looks_.stop();
    tell(Traffic::encrypted);
}

void RequestTrace::onHeader()
{
    // Told of a transport that has failed, too.
    if (has_header_ || !reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid())
        return;
    has_header_ = true;
    lookForSocket();
    looks_.stop();
    tell(Traffic::answering, QByteArray(), isResumed(*reply_) ? 1 : 0);
}

void RequestTrace::end(const QByteArray& body)
{
    looks_.stop();
    const QVariant status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    QString problem;
    if (reply_->error() != QNetworkReply::NoError) {
        problem = reply_->errorString();
        // Qt quotes the address, with what it has for logging in.
        problem.replace(url_.toString(), url_.toString(QUrl::RemoveUserInfo));
        problem.replace(QString::fromLatin1(url_.toEncoded().constData()),
                        url_.toString(QUrl::RemoveUserInfo));
    }
    tell(Traffic::answered, secrets::blotted(body, secrets_), status.toInt(), problem);
}
