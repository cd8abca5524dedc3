#include "tools/service/application.h"

#include "tools/service/atomic_file.h"
#include "tools/service/plant/random_token.h"

#include <filesystem>
#include <iostream>
#include <system_error>
#include <utility>

namespace tovik_service {

Application::Application(const Options& options, plant::Project project)
    : options_(options),
      log_(options.logFile, options.verbose),
      plant_(std::move(project), options.writeHold),
      tokens_(options.tokenLifetime),
      tls_(makeTls()),
      service_(plant_, tokens_, faults_, requests_, log_),
      servicePort_(service_.engine(), tls_.get(), options.host, options.port, log_),
      control_(controlTargets()),
      controlPort_(control_.engine(), nullptr, options.controlHost, options.controlPort, log_)
{
    servicePort_.setRefusing([this] { return faults_.isRefusing(); });
}

void Application::start()
{
    admit();
    for (const std::string& text : options_.faults) {
        const int id = faults_.add(faults::parseFault(text));
        log_.note("fault " + std::to_string(id) + " added, " + text);
    }
    if (!options_.saveCertificateFile.empty()) {
        writeAtomically(options_.saveCertificateFile, tls_->certificatesPem());
    }
    withdrawAddresses();
    servicePort_.start();
    controlPort_.start();
    announce();
}

void Application::stop()
{
    log_.note("stopping");
    withdrawAddresses();
    controlPort_.stop();
    servicePort_.stop();
    log_.note("stopped");
}

std::unique_ptr<http::TlsContext> Application::makeTls()
{
    if (options_.plainHttp) {
        return nullptr;
    }
    http::TlsSettings settings;
    settings.host = options_.host;
    settings.keyType = options_.keyType == "p256" ? http::KeyType::P256 : http::KeyType::Rsa2048;
    settings.version = options_.tlsVersion;
    settings.certificateFile = options_.certificateFile;
    settings.keyFile = options_.keyFile;
    settings.choose = [this] { return chooseCertificate(); };
    return std::make_unique<http::TlsContext>(std::move(settings));
}

http::CertificateChoice Application::chooseCertificate()
{
    const faults::FaultPointer fault = faults_.takeForHandshake();
    if (!fault) {
        return http::CertificateChoice::Good;
    }
    log_.note("handshake: fault " + std::to_string(fault->id) + " applied, " + fault->spec.text);
    return fault->spec.kind() == faults::FaultKind::Expired ? http::CertificateChoice::Expired
                                                            : http::CertificateChoice::WrongHost;
}

control::ControlTargets Application::controlTargets()
{
    return {plant_, tokens_,      faults_,         requests_,
            log_,   serviceUrl(), tls_ != nullptr, [this] { servicePort_.applyRefusing(); }};
}

std::string Application::serviceUrl() const
{
    return (tls_ ? "https://" : "http://") + http::hostAndPort(options_.host, servicePort_.port());
}

// Beyond this computer nobody is let in without a token.
void Application::admit()
{
    control::ControlAccess access{options_.controlHost, controlPort_.isLoopback(),
                                  options_.controlToken, controlPort_.address()};
    if (!access.loopback && access.token.empty()) {
        newToken_ = plant::randomToken();
        access.token = newToken_;
    }
    control_.setAccess(access);
}

// "All addresses" is a place to listen at, not one to go to.
std::string Application::controlUrl() const
{
    const std::string address = controlPort_.address();
    const std::string reachable = address == "0.0.0.0" ? "127.0.0.1"
                                  : address == "::"    ? "::1"
                                                       : address;
    return "http://" + http::hostAndPort(reachable, controlPort_.port());
}

// An address that outlives the service sends clients to somebody else's port.
void Application::withdrawAddresses()
{
    for (const std::string& file : {options_.controlFile, options_.urlFile}) {
        std::error_code ignored;
        if (!file.empty()) {
            std::filesystem::remove(file, ignored);
        }
    }
}

void Application::announce()
{
    const std::string control = controlUrl();
    if (!options_.controlFile.empty()) {
        writeAtomically(options_.controlFile, control + "\n");
    }
    if (!options_.urlFile.empty()) {
        writeAtomically(options_.urlFile, serviceUrl() + "\n");
    }
    log_.note("started, " + serviceUrl() + ", control " + control);
    std::cout << "Service: " << serviceUrl() << "\nControl: " << control
              << "\nDashboard: " << control << "/\n";
    if (!newToken_.empty()) {
        std::cout << "Control token: " << newToken_ << '\n';
    }
    std::cout.flush();
}

} // namespace tovik_service
