#include "tests/tools/host/device_run.h"

#include <QTest>

namespace {

const int longest_wait = 50000;

} // namespace

QStringList words(const char* text)
{
    return QString::fromUtf8(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

QStringList onDevice(const QStringList& arguments, const LineDevice& device)
{
    QStringList all =
        arguments + QStringList{QStringLiteral("--link"), device.link(),
                                QStringLiteral("--library"), HostProcess::echoDriver()};
    const bool has_time = arguments.contains(QStringLiteral("--response-timeout")) ||
                          arguments.contains(QStringLiteral("--timeout"));
    if (!has_time)
        all += words("--response-timeout 40000");
    return all;
}

int waitForEnd(HostProcess& host)
{
    const bool ended = QTest::qWaitFor(
        [&host] { return host.process().state() == QProcess::NotRunning; }, longest_wait);
    return ended ? host.wait() : -1;
}

int runOnly(HostProcess& host, const QStringList& arguments)
{
    host.startBare(arguments);
    return waitForEnd(host);
}

int runOn(HostProcess& host, const LineDevice& device, const QStringList& arguments)
{
    return runOnly(host, onDevice(arguments, device));
}

bool waitForText(HostProcess& host, const QString& text)
{
    return QTest::qWaitFor([&] { return host.output().contains(text); }, longest_wait);
}
