#include "tools/service/application.h"

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

int run(const tovik_service::Options& options)
{
    using namespace tovik_service;
    try {
        plant::Project project = plant::loadProject(options.projectFile);
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
    } catch (const plant::ProjectError& error) {
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
    const tovik_service::ParsedOptions parsed = tovik_service::parseOptions(argc, argv);
    return parsed.exitCode ? *parsed.exitCode : run(parsed.options);
}
