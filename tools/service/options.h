#ifndef TOOLS_SERVICE_OPTIONS_H
#define TOOLS_SERVICE_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

namespace tovik_service {

/// What was asked for on the command line.
struct Options
{
    std::string project_file;
    bool check_only = false;
    std::string host = "127.0.0.1";
    int port = 0;
    std::string control_host = "127.0.0.1";
    int control_port = 0;
    std::string control_token_file;
    std::string control_token; ///< what that file holds
    std::string url_file;
    std::string control_file;
    bool plain_http = false;
    std::string tls_version;
    std::string key_type = "rsa";
    std::string certificate_file;
    std::string key_file;
    std::string save_certificate_file;
    std::optional<double> token_lifetime;
    std::optional<double> write_hold;
    std::vector<std::string> faults;
    std::string log_file;
    bool verbose = false;
};

/// Options to go on with, or the code to exit with.
struct ParsedOptions
{
    Options options;
    std::optional<int> exit_code;
};

constexpr int exit_success = 0;
constexpr int exit_failure = 1;
constexpr int exit_usage = 2;

/// What has been printed has arrived; throws std::runtime_error if it has not, as on a full disk.
void requireOutput();

/// Reads the command line; prints help and error messages itself.
ParsedOptions parseOptions(int count, char** arguments);

} // namespace tovik_service

#endif
