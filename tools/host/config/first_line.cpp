#include "tools/host/config/first_line.h"

#include "tools/host/config/config_file.h"
#include "tools/host/terminal/usage_error.h"

#include <QFile>

namespace tovik_host::config {

std::optional<QString> firstLine(const QString& path, QString* problem)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *problem = file.errorString();
        return std::nullopt;
    }
    QByteArray line = file.readLine();
    while (line.endsWith('\n') || line.endsWith('\r'))
        line.chop(1);
    return QString::fromUtf8(line);
}

QString givenAddress(const QString& url, const QString& url_file)
{
    QString address;
    if (!url_file.isEmpty()) {
        QString problem;
        const std::optional<QString> line = firstLine(url_file, &problem);
        if (!line) {
            throw terminal::UsageError(
                QStringLiteral("cannot read the address file \"%1\": %2 (is the "
                               "service running?)")
                    .arg(url_file, problem));
        }
        address = line->trimmed();
        checkUrl(address, url_file);
    }
    if (!url.isEmpty()) {
        checkUrl(url, QStringLiteral("--url"));
        address = url;
    }
    return address;
}

} // namespace tovik_host::config
