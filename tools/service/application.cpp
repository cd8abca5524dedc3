#include "tools/service/application.h"

#include "tools/file/whole_file.h"
#include "tools/service/control/control_api.h"
#include "tools/service/http/front_end.h"
#include "tools/service/http/handshake_fault.h"
#include "tools/service/http/service_front.h"

#include <csignal>
#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace tovik_service {

namespace {

/// The whole service: both ports and all that is behind them.
class Application
{
public:
    /// Reserves both ports; throws std::runtime_error.
    Application(const Options& options, plant::Project project);

    /// Accepts connections and tells where.
    void start();

    /// Reads the project file again, and goes on with what stands there now; clients notice nothing
    /// but other values. Throws plant::ProjectError, and goes on as before then.
    void reloadPlant();

    /// Ends both ports, whatever their clients are doing.
    void stop();

private:
    std::unique_ptr<http::TlsContext> makeTls();
    control::ControlTargets controlTargets();
    std::string serviceUrl() const;
    void admit();
    std::string controlUrl() const;
    void announce();
    void withdrawAddresses();

    Options options_;
    http::EventLog log_;
    plant::Plant plant_;
    plant::TokenStore tokens_;
    faults::FaultTable faults_;
    http::RequestLog requests_;
    std::unique_ptr<http::TlsContext> tls_;
    http::ServiceFront service_;
    http::FrontEnd service_port_;
    control::ControlApi control_;
    http::FrontEnd control_port_;
    std::string new_token_; ///< of the control port, made because nobody gave one
};

/// Others see the file complete or not at all.
void writeFile(const std::string& file, const std::string& text)
{
    try {
        tovik_file::writeWholeFile(file, text);
    } catch (const std::system_error& error) {
        throw std::runtime_error("cannot write " + file + ": " + error.code().message());
    }
}

/// Reads the plant again.
constexpr int reload_signal = SIGUSR1;

/// The signals that the program hears. Blocked in all threads and awaited in one place, so
/// that no code has to run inside a signal handler.
sigset_t blockSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGHUP);
    sigaddset(&signals, reload_signal);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    return signals;
}

int waitForSignal(const sigset_t& signals)
{
    int signal = 0;
    sigwait(&signals, &signal);
    return signal;
}

Application::Application(const Options& options, plant::Project project)
    : options_(options),
      log_(options.log_file, options.verbose),
      plant_(std::move(project), options.write_hold),
      tokens_(options.token_lifetime),
      tls_(makeTls()),
      service_(plant_, tokens_, faults_, requests_, log_),
      service_port_(service_.engine(), tls_.get(), options.host, options.port, log_),
      control_(controlTargets()),
      control_port_(control_.engine(), nullptr, options.control_host, options.control_port, log_)
{
    service_port_.setRefusing([this] { return faults_.isRefusing(); });
}

void Application::start()
{
    admit();
    for (const std::string& text : options_.faults) {
        const int id = faults_.add(faults::parseFault(text));
        log_.note("fault " + std::to_string(id) + " added, " + text);
    }
    if (!options_.save_certificate_file.empty())
        writeFile(options_.save_certificate_file, tls_->certificatesPem());
    withdrawAddresses();
    service_port_.start();
    control_port_.start();
    announce();
}

void Application::reloadPlant()
{
    try {
        plant_.replace(plant::loadProject(options_.project_file));
    } catch (const plant::ProjectError& error) {
        log_.note(std::string("the plant stays as it was: ") + error.what());
        throw;
    }
    log_.note("plant read again from " + options_.project_file);
}

void Application::stop()
{
    log_.note("stopping");
    withdrawAddresses();
    control_port_.stop();
    service_port_.stop();
    log_.note("stopped");
}

std::unique_ptr<http::TlsContext> Application::makeTls()
{
    if (options_.plain_http)
        return nullptr;
    http::TlsSettings settings;
    settings.host = options_.host;
    settings.key_type = options_.key_type == "p256" ? http::KeyType::P256 : http::KeyType::Rsa2048;
    settings.version = options_.tls_version;
    settings.certificate_file = options_.certificate_file;
    settings.key_file = options_.key_file;
    settings.plan = [this](bool is_resumption) {
        return http::planHandshake(faults_, log_, is_resumption);
    };
    return std::make_unique<http::TlsContext>(std::move(settings));
}

control::ControlTargets Application::controlTargets()
{
    return {plant_,
            tokens_,
            faults_,
            requests_,
            log_,
            serviceUrl(),
            tls_ != nullptr,
            [this] { service_port_.applyRefusing(); },
            [this] { reloadPlant(); }};
}

std::string Application::serviceUrl() const
{
    return (tls_ ? "https://" : "http://") + http::hostAndPort(options_.host, service_port_.port());
}

// Beyond this computer nobody is let in without a token.
void Application::admit()
{
    control::ControlAccess access{options_.control_host, control_port_.isLoopback(),
                                  options_.control_token, control_port_.address()};
    if (!access.loopback && access.token.empty()) {
        new_token_ = plant::randomToken();
        access.token = new_token_;
    }
    control_.setAccess(access);
}

// "All addresses" is a place to listen at, not one to go to.
std::string Application::controlUrl() const
{
    const std::string address = control_port_.address();
    const std::string reachable = address == "0.0.0.0" ? "127.0.0.1"
                                  : address == "::"    ? "::1"
                                                       : address;
    return "http://" + http::hostAndPort(reachable, control_port_.port());
}

// An address that outlives the service sends clients to somebody else's port.
void Application::withdrawAddresses()
{
    for (const std::string& file : {options_.control_file, options_.url_file}) {
        std::error_code ignored;
        if (!file.empty())
            std::filesystem::remove(file, ignored);
    }
}

void Application::announce()
{
    const std::string control = controlUrl();
    if (!options_.control_file.empty())
        writeFile(options_.control_file, control + "\n");
    if (!options_.url_file.empty())
        writeFile(options_.url_file, serviceUrl() + "\n");
    log_.note("started, " + serviceUrl() + ", control " + control);
    std::cout << "Service: " << serviceUrl() << "\nControl: " << control
              << "\nDashboard: " << control << "/\n";
    if (!new_token_.empty())
        std::cout << "Control token: " << new_token_ << '\n';
    requireOutput();
}

} // namespace

int run(const Options& options)
{
    try {
        plant::Project project = plant::loadProject(options.project_file);
        for (const std::string& fault : options.faults) {
            const std::string problem = faults::plantProblem(faults::parseFault(fault), project);
            if (!problem.empty())
                throw plant::ProjectError(problem);
        }
        if (options.check_only) {
            std::cout << options.project_file << ": good\n";
            requireOutput();
            return exit_success;
        }
        const sigset_t signals = blockSignals();
        Application application(options, std::move(project));
        application.start();
        while (waitForSignal(signals) == reload_signal) {
            try {
                application.reloadPlant();
            } catch (const plant::ProjectError&) {
                // It is in the log, and the service goes on.
            }
        }
        application.stop();
    } catch (const plant::ProjectError& error) {
        std::cerr << "tovik-cloud: " << error.what() << '\n';
        return exit_usage;
    }
    return exit_success;
}

} // namespace tovik_service
