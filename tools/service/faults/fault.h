#ifndef TOOLS_SERVICE_FAULTS_FAULT_H
#define TOOLS_SERVICE_FAULTS_FAULT_H

#include "tools/service/plant/api_path.h"
#include "tools/service/plant/project.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace tovik_service::faults {

/// All that can be made to go wrong.
enum class FaultKind
{
    Refuse,
    Reset,
    ResetMid,
    Hang,
    Drip,
    Delay,
    Empty,
    Truncated,
    NotJson,
    NotObject,
    Missing,
    Mistyped,
    ErrorCode,
    Http500,
    Http500Empty,
    TokenExpiry,
    WrongHost,
    Expired,
    TicketsLost,
    NoTickets,
    ResumeClose,
    ResumeReset,
    TlsVersion
};

/// When a fault strikes: at the port, in the TLS handshake, or in a request.
enum class FaultStage
{
    Port,
    Handshake,
    Request
};

/// The fixed facts about a kind of fault.
struct FaultDefinition
{
    FaultKind kind;
    const char* name;
    FaultStage stage;
    const char* parameter; ///< the key that only this kind takes, or nothing
    const char* help;
};

/// A fault as someone asked for it.
struct FaultSpec
{
    const FaultDefinition* definition = nullptr;
    std::string text; ///< as it was written
    std::optional<plant::ApiPath> path;
    std::string item;
    std::string group;
    std::optional<int> count;
    std::optional<double> seconds;
    int after = 0;
    int ms = 0;
    int code = 0;
    int status = 0;
    std::string member = "errorcode";
    std::string version = "1.2";

    FaultKind kind() const { return definition->kind; }
};

/// A fault that cannot be understood; the text says what to write instead.
class FaultError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// All kinds of faults, in the order in which they are explained.
const std::vector<FaultDefinition>& faultDefinitions();

/// The keys that a kind takes, its own first.
std::vector<std::string> faultKeys(const FaultDefinition& definition);

/// The list of faults and keys, for people.
std::string faultHelp();

/// Reads NAME[:key=value,...]; throws FaultError.
FaultSpec parseFault(const std::string& text);

/// True for faults that strike only handshakes in which the client asks for resumption.
bool needsResumption(FaultKind kind);

/// Why a fault cannot be used without TLS, or nothing.
std::string tlsProblem(const FaultSpec& fault, bool has_tls);

/// Why a fault cannot strike in a plant: it has no such item or group. Or nothing.
std::string plantProblem(const FaultSpec& fault, const plant::Project& project);

} // namespace tovik_service::faults

#endif
