#include "cloud/trace/request_trace.h"

#include "cloud/trace/secrets.h"
#include "compat/tls_session.h"

#include <QNetworkReply>
#include <QNetworkRequest>
#include <QRegExp>
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
      reply_(0)
{
    looks_.setInterval(1);
    connect(&looks_, SIGNAL(timeout()), this, SLOT(lookForSocket()));
}

void RequestTrace::tell(Traffic::Kind kind, const QString& text, const QByteArray& bytes, int code)
{
    // With any other the connection is there, or is not needed any more.
    if (kind != Traffic::named)
        looks_.stop();
    Traffic traffic(kind, bytes, code, text);
    traffic.number = number_;
    listener_->hear(traffic);
}

void RequestTrace::begin(const QByteArray& body)
{
    secrets_ = secrets::in(body);
    QUrl shown = url_;
    shown.setUserInfo(QString());
    tell(Traffic::asked, QLatin1String("POST ") + shown.toString(), secrets::blotted(body));
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
    tell(Traffic::named, texts.join(QLatin1String(", ")));
}

void RequestTrace::lookForSocket()
{
    if (looks_.isActive() && !sockets_.connectedTo(addresses_, portOf(url_)).isEmpty())
        tell(Traffic::connected);
}

void RequestTrace::onEncrypted()
{
    lookForSocket();
    tell(Traffic::encrypted);
}

void RequestTrace::onHeader()
{
    lookForSocket();
    tell(Traffic::answering, QString(), QByteArray(), int(isResumed(*reply_)));
}

void RequestTrace::end(const QByteArray& body)
{
    const QVariant status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    QString problem;
    if (reply_->error() != QNetworkReply::NoError) {
        problem = reply_->errorString();
        // Qt quotes the address, with what it has for logging in.
        problem.replace(QRegExp(QLatin1String("//[^/]*@")), QLatin1String("//"));
    }
    tell(Traffic::answered, problem, secrets::blotted(body, secrets_), status.toInt());
}
