#ifndef TESTS_SUPPORT_CLOUD_PROCESS_H
#define TESTS_SUPPORT_CLOUD_PROCESS_H

#include "tests/support/bound_process.h"

#include <QProcess>
#include <QString>
#include <QStringList>

#include <nlohmann/json.hpp>

#include <string>

/// What came back for a request, if anything did.
struct ServiceAnswer
{
    bool arrived = false;
    int status = 0;
    std::string text;
    nlohmann::json json;

    int errorCode() const;
};

/// The real program, started for a test and ended with it. To be started by the main thread.
class CloudProcess
{
public:
    CloudProcess();
    CloudProcess(const CloudProcess&) = delete;
    CloudProcess& operator=(const CloudProcess&) = delete;

    static QString program();
    static QString exampleProject();

    /// Starts with the example project and waits until both ports are told.
    bool start(const QStringList& options = {});
    /// The same with another project file.
    bool startProject(const QString& project, const QStringList& options);

    /// Sends the signal and gives the exit code, -1 if there is none within ten seconds.
    int stop(int signal);

    int port() const { return port_; }
    int controlPort() const { return control_port_; }
    QProcess& process() { return process_; }
    std::string log();

    /// A request over a connection of its own.
    ServiceAnswer post(const std::string& path, const nlohmann::json& body);
    ServiceAnswer postRaw(const std::string& path, const std::string& body,
                          const std::string& content_type = "application/json");

    /// Logs in as the operator of the example project.
    std::string login();
    ServiceAnswer value(const std::string& token, const std::string& item);
    ServiceAnswer write(const std::string& token, const std::string& item,
                        const nlohmann::json& value);

    ServiceAnswer control(const std::string& method, const std::string& path,
                          const std::string& body = {});

    /// What the program has written to standard output.
    const QString& output() const { return output_; }

    /// Adds a fault over the control API and gives its number, 0 on failure.
    int addFault(const std::string& fault);

    /// How often a fault has struck.
    int applied(int fault);

private:
    BoundProcess process_;
    std::string log_;
    QString output_;
    bool tls_ = true;
    int port_ = 0;
    int control_port_ = 0;
};

#endif
