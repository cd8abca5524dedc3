#ifndef TESTS_SUPPORT_HOST_PROCESS_H
#define TESTS_SUPPORT_HOST_PROCESS_H

#include "tests/support/bound_process.h"

#include <nlohmann/json.hpp>

#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QVector>

/// The real program, run for a test with a configuration of its own.
class HostProcess
{
public:
    /// The account and the project of the configuration; the items come with addItem().
    explicit HostProcess(const QString& project = QStringLiteral("plant"));
    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;

    static QString program();
    static QString fakeDriver();
    static QString halfDriver();
    /// A driver on the framework, for a device on a link.
    static QString echoDriver();

    void addItem(const QString& name, const QString& id, const QString& type, int length = 0);
    /// Replaces the fake driver.
    void useDriver(const QString& path) { driver_ = path; }
    void useAddress(const QString& url);
    void useAccount(const QString& email, const QString& password);

    /// Starts the program with \a arguments and then the configuration and the library.
    void start(const QStringList& arguments);
    /// As start(), within a shell's \a script, which finds the command line in "$@".
    void startInShell(const QString& script, const QStringList& arguments);
    /// Starts it with \a arguments alone.
    void startBare(const QStringList& arguments);
    /// Waits for the end and returns the exit code, or -1.
    int wait();
    /// start() and wait().
    int run(const QStringList& arguments);
    /// Waits until the standard output contains \a text.
    bool waitForOutput(const QString& text);
    void sendSignal(int number);

    /// The standard output so far, and of an ended program the standard error.
    QString output();
    QString errors();
    QStringList outputLines();
    QVector<nlohmann::json> outputJson();
    /// What --log has written; give logFile() as its argument.
    QString log() const;
    QString logFile() const;
    /// The configuration file, as start() writes it.
    QString configFile() const;
    void writeConfig();

    QProcess& process() { return process_; }

private:
    QStringList withConfig(const QStringList& arguments) const;

    QTemporaryDir folder_;
    BoundProcess process_;
    nlohmann::json config_;
    QString driver_ = fakeDriver();
    QByteArray output_;
};

#endif
