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
        plant::Project project = plant::loadProject(options.project_file);
        if (options.check_only) {
            std::cout << options.project_file << ": good\n";
            return exit_success;
        }
        const sigset_t signals = blockEndingSignals();
        Application application(options, std::move(project));
        application.start();
        int signal = 0;
        sigwait(&signals, &signal);
        application.stop();
    } catch (const plant::ProjectError& error) {
        std::cerr << "tovik-cloud: " << error.what() << '\n';
        return exit_usage;
    } catch (const std::exception& error) {
        std::cerr << "tovik-cloud: " << error.what() << '\n';
        return exit_failure;
    }
    return exit_success;
}

} // namespace

int main(int argc, char** argv)
{
    const tovik_service::ParsedOptions parsed = tovik_service::parseOptions(argc, argv);
    return parsed.exit_code ? *parsed.exit_code : run(parsed.options);
}
