#include "cloud/post.h"

#include "cloud/trace/request_trace.h"
#include "compat/cipher_list.h"
#include "compat/whole_post.h"

#include <QDebug>
#include <QEventLoop>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslConfiguration>
#include <QSslSocket>
#include <QUrl>

namespace {

struct RegisteredTypes
{
    RegisteredTypes() { const QNetworkAccessManager manager; }
};

/// \a memory, once Qt has its types: each manager registers those of its signals, and where the
/// first ones of two threads are made at once, both do, and Qt warns. A manager does it here, since
/// what this library registered itself would be gone with it when a host unloads it.
PostMemory* afterRegistration(PostMemory* memory)
{
    static const RegisteredTypes types;
    Q_UNUSED(types)
    return memory;
}

} // namespace

Post::Post(const QString& body, const QString& url, PostMemory* memory)
    : memory_(afterRegistration(memory)),
      trace_(memory->listener ? new RequestTrace(memory->listener, ++memory->count, QUrl(url)) : 0),
      prompt_(QUrl(url), &memory->sockets),
      reply_(0)
{
    QNetworkRequest request((QUrl(url)));
    request.setRawHeader(QByteArray("Content-Type"), QByteArray("application/json"));
    QSslConfiguration ssl = request.sslConfiguration();
    ssl.setPeerVerifyMode(QSslSocket::VerifyNone);
    cipher_list::leaveToOpenSsl(&ssl);
    request.setSslConfiguration(ssl);
    memory_->session.offer(&request);

    const QByteArray bytes = body.toLocal8Bit();
    if (trace_)
        trace_->begin(bytes);
    reply_ = manager_.post(request, bytes);
    whole_post::handOverBody(reply_, bytes.size());
    prompt_.watch(reply_);
    if (trace_)
        trace_->watch(reply_);
    connect(reply_, SIGNAL(finished()), this, SLOT(takeSession()));
    connect(reply_, SIGNAL(finished()), this, SIGNAL(EmitFinished()));
}

Post::~Post() {}

void Post::takeSession()
{
    memory_->session.take(*reply_);
}

void Post::wait()
{
    QEventLoop loop;
    connect(reply_, SIGNAL(finished()), &loop, SLOT(quit()));
    loop.exec();
}

std::string Post::takeBytes()
{
    const QByteArray body = reply_->readAll();
    if (trace_)
        trace_->end(body);
    if (hasFailed())
        qDebug() << "[TOVIK IoT] Post Request Error: " << problem();
    return std::string(body.constData(), qstrnlen(body.constData(), uint(body.size())));
}

bool Post::hasFailed() const
{
    return reply_->error() != QNetworkReply::NoError;
}

QString Post::problem() const
{
    return reply_->errorString();
}
