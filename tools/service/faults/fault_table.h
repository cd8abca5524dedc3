#ifndef TOOLS_SERVICE_FAULTS_FAULT_TABLE_H
#define TOOLS_SERVICE_FAULTS_FAULT_TABLE_H

#include "tools/service/faults/fault.h"
#include "tools/service/plant/clock.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace tovik_service::faults {

/// What a fault needs to know of a TLS handshake.
struct HandshakeFacts
{
    bool is_resumption = false; ///< The client asks for it.
};

/// What a fault needs to know of a request.
struct RequestFacts
{
    plant::ApiPath path = plant::ApiPath::Login;
    std::string item;
    std::string group;
};

/// A fault that was added, with its figures.
class ActiveFault
{
public:
    ActiveFault(int fault_id, FaultSpec fault_spec, double end)
        : id(fault_id),
          spec(std::move(fault_spec)),
          end_(end)
    {}

    /// False once its time is over or it was taken away; a used up count does not end what
    /// the fault has already begun.
    bool isInForce(double now) const { return !removed_ && now < end_; }

    const int id;
    const FaultSpec spec;

private:
    friend class FaultTable;

    double end_;
    std::atomic<bool> removed_{false};
    int seen_ = 0;
    int applied_ = 0;
};

using FaultPointer = std::shared_ptr<ActiveFault>;

/// The figures of a fault, for people.
struct FaultStatus
{
    int id = 0;
    std::string text;
    bool active = false;
    int applied = 0;
};

/// The faults in force. At most one strikes a request: the first that was added and fits.
/// Safe to use from several threads.
class FaultTable
{
public:
    explicit FaultTable(plant::Clock clock = plant::steadySeconds);

    /// Adds a fault, in force from now on, and gives its number.
    int add(const FaultSpec& spec);

    /// Takes a fault away; false if there is none with this number.
    bool remove(int id);
    void clear();

    /// The fault for a request, or null; counts it as applied.
    FaultPointer takeForRequest(const RequestFacts& facts);

    /// The fault for a TLS handshake, or null; counts it as applied.
    FaultPointer takeForHandshake(const HandshakeFacts& facts);

    /// True while the port shall refuse connections.
    bool isRefusing() const;

    bool isInForce(const ActiveFault& fault) const { return fault.isInForce(clock_()); }
    std::vector<FaultStatus> list() const;

private:
    bool isActive(const ActiveFault& fault) const;
    FaultPointer take(FaultStage stage, const std::function<bool(const FaultSpec&)>& fits);
    void dropFinished();

    plant::Clock clock_;
    mutable std::mutex mutex_;
    std::vector<FaultPointer> faults_;
    int last_id_ = 0;
};

} // namespace tovik_service::faults

#endif
