#ifndef TESTS_TOOLS_HOST_SERVICE_RUN_H
#define TESTS_TOOLS_HOST_SERVICE_RUN_H

#include "tests/support/host_process.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// The program with the account of the simulated service's example project.
class ServiceRun
{
public:
    explicit ServiceRun(int port, const QString& password = QStringLiteral("tovik"))
        : url_(QStringLiteral("https://127.0.0.1:%1").arg(port))
    {
        qputenv("TOVIK_PASSWORD", password.toUtf8());
    }

    /// The options of the account; the password is in the environment.
    QStringList account() const
    {
        return {QStringLiteral("--url"),     url_,
                QStringLiteral("--project"), QStringLiteral("plant"),
                QStringLiteral("--email"),   QStringLiteral("operator@example.com")};
    }
    void start(const QStringList& arguments) { host_.startBare(arguments + account()); }
    /// Runs it and returns the exit code.
    int command(const QStringList& arguments)
    {
        start(arguments);
        return host_.wait();
    }
    HostProcess& host() { return host_; }
    /// A file in a folder of this run's own.
    QString file(const QString& name) const { return folder_.filePath(name); }

private:
    QString url_;
    QTemporaryDir folder_;
    HostProcess host_;
};

#endif
