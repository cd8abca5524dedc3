#include "tools/service/faults/fault_table.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace tovik_service::faults {

namespace {

constexpr std::size_t most_faults = 1000;

bool fitsRequest(const FaultSpec& spec, const RequestFacts& facts)
{
    return (!spec.path || *spec.path == facts.path) &&
           (spec.item.empty() || spec.item == facts.item) &&
           (spec.group.empty() || spec.group == facts.group);
}

} // namespace

FaultTable::FaultTable(plant::Clock clock) : clock_(std::move(clock)) {}

int FaultTable::add(const FaultSpec& spec)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    dropFinished();
    const double end =
        spec.seconds ? clock_() + *spec.seconds : std::numeric_limits<double>::infinity();
    faults_.push_back(std::make_shared<ActiveFault>(++last_id_, spec, end));
    return last_id_;
}

bool FaultTable::remove(int id)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = std::find_if(faults_.begin(), faults_.end(),
                                    [id](const FaultPointer& fault) { return fault->id == id; });
    if (found == faults_.end())
        return false;
    (*found)->removed_ = true;
    faults_.erase(found);
    return true;
}

void FaultTable::clear()
{
    const std::lock_guard<std::mutex> lock(mutex_);
    for (const FaultPointer& fault : faults_)
        fault->removed_ = true;
    faults_.clear();
}

FaultPointer FaultTable::takeForRequest(const RequestFacts& facts)
{
    return take(FaultStage::Request,
                [&facts](const FaultSpec& spec) { return fitsRequest(spec, facts); });
}

FaultPointer FaultTable::takeForHandshake(const HandshakeFacts& facts)
{
    return take(FaultStage::Handshake, [&facts](const FaultSpec& spec) {
        return facts.is_resumption || !needsResumption(spec.kind());
    });
}

bool FaultTable::isRefusing() const
{
    const std::lock_guard<std::mutex> lock(mutex_);
    return std::any_of(faults_.begin(), faults_.end(), [this](const FaultPointer& fault) {
        return fault->spec.kind() == FaultKind::Refuse && isActive(*fault);
    });
}

std::vector<FaultStatus> FaultTable::list() const
{
    const std::lock_guard<std::mutex> lock(mutex_);
    std::vector<FaultStatus> statuses;
    for (const FaultPointer& fault : faults_)
        statuses.push_back({fault->id, fault->spec.text, isActive(*fault), fault->applied_});
    return statuses;
}

bool FaultTable::isActive(const ActiveFault& fault) const
{
    const bool used_up = fault.spec.count && fault.applied_ >= *fault.spec.count;
    return !used_up && fault.isInForce(clock_());
}

FaultPointer FaultTable::take(FaultStage stage, const std::function<bool(const FaultSpec&)>& fits)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    FaultPointer taken;
    for (const FaultPointer& fault : faults_) {
        if (fault->spec.definition->stage != stage || !isActive(*fault) || !fits(fault->spec))
            continue;
        const bool skips = fault->seen_++ < fault->spec.after;
        if (!skips && !taken) {
            taken = fault;
            ++fault->applied_;
        }
    }
    return taken;
}

// Finished faults stay in the list for a look at their figures, but not without end.
void FaultTable::dropFinished()
{
    if (faults_.size() < most_faults)
        return;
    const auto finished = [this](const FaultPointer& fault) { return !isActive(*fault); };
    faults_.erase(std::remove_if(faults_.begin(), faults_.end(), finished), faults_.end());
}

} // namespace tovik_service::faults
