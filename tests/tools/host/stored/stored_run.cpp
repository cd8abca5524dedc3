#include "tests/tools/host/stored/stored_run.h"

#include "tests/support/host_process.h"

#include <QFile>

void StoredRun::newFolder()
{
    folder_.reset(new QTemporaryDir);
}

QString StoredRun::write(const char* name, const QByteArray& bytes) const
{
    QFile file(path(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        return QString();
    return file.fileName();
}

QByteArray StoredRun::read(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

int StoredRun::run(const QStringList& arguments)
{
    HostProcess host;
    host.startBare(arguments);
    const int code = host.wait();
    output_ = host.output();
    errors_ = host.errors();
    return code;
}

int StoredRun::convert(const QString& from, const QString& to, const QStringList& options)
{
    return run(QStringList{QStringLiteral("convert"), from, to} + options);
}

int StoredRun::show(const QString& file, const QStringList& options)
{
    return run(QStringList{QStringLiteral("show"), file} + options);
}
