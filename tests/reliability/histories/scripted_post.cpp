#include "tests/reliability/histories/stage.h"

#include "cloud/post.h"

#include <QDebug>
#include <QEventLoop>

Post::Post(const QString& body, const QString& url, PostMemory*) : has_failed_(false)
{
    connect(this, SIGNAL(finished()), this, SIGNAL(EmitFinished()));
    Stage::current()->posted(this, url, body);
}

Post::~Post()
{
    Stage::current()->ended(this);
}

void Post::wait()
{
    QEventLoop loop;
    connect(this, SIGNAL(finished()), &loop, SLOT(quit()));
    loop.exec();
}

std::string Post::takeBytes()
{
    if (has_failed_)
        qDebug() << "[TOVIK IoT] Post Request Error: " << problem();
    return bytes_.toStdString();
}

QString Post::problem() const
{
    return has_failed_ ? QStringLiteral("broken") : QString();
}

void Post::finish(const QByteArray& bytes, bool has_failed)
{
    bytes_ = bytes;
    has_failed_ = has_failed;
    Stage::current()->ended(this);
    Q_EMIT finished();
}
