#ifndef TOOLS_SERVICE_OPTIONS_H
#define TOOLS_SERVICE_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

namespace tovik_service {

/// What was asked for on the command line.
struct Options
{
    std::string projectFile;
    bool checkOnly = false;
    std::string host = "127.0.0.1";
    int port = 0;
    std::string controlHost = "127.0.0.1";
    int controlPort = 0;
    std::string controlTokenFile;
    std::string controlToken; ///< what that file holds
    std::string urlFile;
    std::string controlFile;
    bool plainHttp = false;
    std::string tlsVersion;
    std::string keyType = "rsa";
    std::string certificateFile;
    std::string keyFile;
    std::string saveCertificateFile;
    std::optional<double> tokenLifetime;
    std::optional<double> writeHold;
    std::vector<std::string> faults;
    std::string logFile;
    bool verbose = false;
};

/// Options to go on with, or the code to exit with.
struct ParsedOptions
{
    Options options;
    std::optional<int> exitCode;
};

constexpr int exitSuccess = 0;
constexpr int exitFailure = 1;
constexpr int exitUsage = 2;

/// Reads the command line; prints help and error messages itself.
ParsedOptions parseOptions(int count, char** arguments);

} // namespace tovik_service

#endif
