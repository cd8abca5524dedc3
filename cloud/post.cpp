#include "cloud/post.h"

#include "compat/text.h"
#include "compat/whole_post.h"

#include <QDebug>
#include <QEventLoop>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslConfiguration>
#include <QSslSocket>
#include <QUrl>

Post::Post(const QString& body, const QString& url) : reply_(0)
{
    QNetworkRequest request((QUrl(url)));
    request.setRawHeader(QByteArray("Content-Type"), QByteArray("application/json"));
    QSslConfiguration ssl = request.sslConfiguration();
    ssl.setPeerVerifyMode(QSslSocket::VerifyNone);
    request.setSslConfiguration(ssl);

    const QByteArray bytes = body.toLocal8Bit();
    reply_ = manager_.post(request, bytes);
    whole_post::handOverBody(reply_, bytes.size());
    connect(reply_, SIGNAL(finished()), this, SIGNAL(EmitFinished()));
}

Post::~Post() {}

void Post::wait()
{
    QEventLoop loop;
    connect(reply_, SIGNAL(finished()), &loop, SLOT(quit()));
    loop.exec();
}

QString Post::takeText()
{
    const QString text = text::fromLatin1UpToNul(reply_->readAll());
    if (reply_->error() != QNetworkReply::NoError)
        qDebug() << "[TOVIK IoT] Post Request Error: " << reply_->errorString();
    return text;
}
