#ifndef TESTS_TOOLS_HOST_CHECK_RUN_H
#define TESTS_TOOLS_HOST_CHECK_RUN_H

#include "tests/support/cloud_process.h"
#include "tests/support/host_process.h"

/// One run of the command "check" against the simulated service, with two items that are well.
class CheckRun
{
public:
    CheckRun();

    /// Starts the service with \a options, and points the configuration to it.
    bool startService(const QStringList& options = {});
    /// Runs the command with JSON, and returns its exit code.
    int check(const QStringList& options = {});
    /// The lines of a step; all of that name.
    QVector<nlohmann::json> stepsOf(const char* name) const;
    /// The first one of them, or an empty object.
    nlohmann::json firstStep(const char* name) const;
    const QVector<nlohmann::json>& lines() const { return lines_; }
    /// The last line.
    nlohmann::json verdict() const;

    CloudProcess cloud;
    HostProcess host;

private:
    QVector<nlohmann::json> lines_;
};

QString latin1(const char* text);
/// A member that is a text; empty if there is none.
QString textOf(const nlohmann::json& object, const char* member);

#endif
