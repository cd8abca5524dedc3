#include "tests/support/host_process.h"

#include <QElapsedTimer>
#include <QFile>

namespace {

const int longest_wait = 60000;

} // namespace

HostProcess::HostProcess(const QString& project)
{
    config_["service"] = {{"url", "https://127.0.0.1:1"},
                          {"project", project.toStdString()},
                          {"email", "operator@example.com"},
                          {"password", "secret"}};
    config_["items"] = nlohmann::json::array();
}

QString HostProcess::program()
{
    return QStringLiteral(TOVIK_HOST_PROGRAM);
}

QString HostProcess::fakeDriver()
{
    return QStringLiteral(TOVIK_FAKE_DRIVER);
}

QString HostProcess::halfDriver()
{
    return QStringLiteral(TOVIK_HALF_DRIVER);
}

QString HostProcess::echoDriver()
{
    return QStringLiteral(TOVIK_ECHO_DRIVER);
}

void HostProcess::addItem(const QString& name, const QString& id, const QString& type, int length)
{
    nlohmann::json item = {
        {"name", name.toStdString()}, {"id", id.toStdString()}, {"type", type.toStdString()}};
    if (length > 0)
        item["length"] = length;
    config_["items"].push_back(item);
}

void HostProcess::useAddress(const QString& url)
{
    config_["service"]["url"] = url.toStdString();
}

void HostProcess::useAccount(const QString& email, const QString& password)
{
    config_["service"]["email"] = email.toStdString();
    config_["service"]["password"] = password.toStdString();
}

QString HostProcess::configFile() const
{
    return folder_.filePath(QStringLiteral("config.json"));
}

void HostProcess::writeConfig()
{
    QFile file(configFile());
    if (file.open(QIODevice::WriteOnly))
        file.write(QByteArray::fromStdString(config_.dump(2)));
}

QStringList HostProcess::withConfig(const QStringList& arguments) const
{
    return arguments + QStringList{QStringLiteral("--config"), configFile(),
                                   QStringLiteral("--library"), driver_};
}

void HostProcess::start(const QStringList& arguments)
{
    writeConfig();
    startBare(withConfig(arguments));
}

void HostProcess::startInShell(const QString& script, const QStringList& arguments)
{
    writeConfig();
    output_.clear();
    process_.start(QStringLiteral("sh"),
                   QStringList{QStringLiteral("-c"), script, QStringLiteral("sh"), program()} +
                       withConfig(arguments));
    process_.waitForStarted();
}

void HostProcess::startBare(const QStringList& arguments)
{
    output_.clear();
    process_.start(program(), arguments);
    process_.waitForStarted();
}

int HostProcess::wait()
{
    return process_.waitForExitCode();
}

int HostProcess::run(const QStringList& arguments)
{
    start(arguments);
    return wait();
}

bool HostProcess::waitForOutput(const QString& text)
{
    QElapsedTimer elapsed;
    elapsed.start();
    while (!output().contains(text)) {
        const int left = longest_wait - int(elapsed.elapsed());
        if (left <= 0 || !process_.waitForReadyRead(left))
            return output().contains(text);
    }
    return true;
}

void HostProcess::sendSignal(int number)
{
    process_.sendSignal(number);
}

QString HostProcess::output()
{
    output_ += process_.readAllStandardOutput();
    return QString::fromUtf8(output_);
}

QString HostProcess::errors()
{
    return QString::fromUtf8(process_.readAllStandardError());
}

QStringList HostProcess::outputLines()
{
    return output().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QVector<nlohmann::json> HostProcess::outputJson()
{
    QVector<nlohmann::json> objects;
    for (const QString& line : outputLines())
        objects << nlohmann::json::parse(line.toStdString(), nullptr, false);
    return objects;
}

QString HostProcess::logFile() const
{
    return folder_.filePath(QStringLiteral("driver.log"));
}

QString HostProcess::log() const
{
    QFile file(logFile());
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}
