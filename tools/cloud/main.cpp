#include "tools/cloud/application.h"

#include <csignal>
#include <exception>
#include <iostream>

namespace {

/// The signals that end the program. Blocked in all threads and awaited in one place, so
/// that no code has to run inside a signal handler.
sigset_t blockEndingSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    return signals;
}

int run(const tovik_cloud::Options& options)
{
    using namespace tovik_cloud;
    try {
        Project project = loadProject(options.projectFile);
        if (options.checkOnly) {
            std::cout << options.projectFile << ": good\n";
            return exitSuccess;
        }
        const sigset_t signals = blockEndingSignals();
        Application application(options, std::move(project));
        application.start();
        int signal = 0;
        sigwait(&signals, &signal);
        application.stop();
    } catch (const ProjectError& error) {
        std::cerr << "tovik-cloud: " << error.what() << '\n';
        return exitUsage;
    } catch (const std::exception& error) {
        std::cerr << "tovik-cloud: " << error.what() << '\n';
        return exitFailure;
    }
    return exitSuccess;
}

} // namespace

int main(int argc, char** argv)
{
    const tovik_cloud::ParsedOptions parsed = tovik_cloud::parseOptions(argc, argv);
    return parsed.exitCode ? *parsed.exitCode : run(parsed.options);
}
