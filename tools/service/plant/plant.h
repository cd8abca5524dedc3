#ifndef TOOLS_SERVICE_PLANT_PLANT_H
#define TOOLS_SERVICE_PLANT_PLANT_H

#include "tools/service/plant/clock.h"
#include "tools/service/plant/project.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace tovik_service::plant {

/// A data item together with its value of this moment.
struct ItemView
{
    const Group* group = nullptr;
    const Item* item = nullptr;
    Json value;
    std::int64_t update_time = 0; ///< seconds since 1970
};

/// What became of a write.
enum class WriteOutcome
{
    Done,
    UnknownItem,
    ReadOnly,
    BadValue
};

/// Who writes: the control API may write to read-only items, a client may not.
enum class Writer
{
    Client,
    Control
};

/// A write's outcome and, unless done, the reason.
struct WriteResult
{
    WriteOutcome outcome = WriteOutcome::Done;
    std::string problem;
};

/// The plant as it runs: values that move with time and values that were written.
/// Safe to use from several threads.
class Plant
{
public:
    /// A written value of a moving item holds for this long; nothing means for ever.
    using WriteHold = std::optional<double>;

    Plant(Project project, WriteHold write_hold, Clock wall_clock = unixSeconds,
          Clock steady_clock = steadySeconds);
    ~Plant();

    /// Goes on with another project: every value begins anew. What was handed out of the one before
    /// can be used as long as the plant.
    void replace(Project project);

    const Project& project() const { return *project_; }
    WriteHold writeHold() const { return write_hold_; }
    const Group* findGroup(const std::string& id) const;
    std::optional<ItemView> item(const std::string& id);
    std::vector<ItemView> itemsOf(const Group& group);
    std::vector<ItemView> allItems();
    WriteResult write(const std::string& id, const Json& value, Writer writer);

    /// The id of the group that holds an item, or an empty string.
    std::string groupIdOf(const std::string& item_id) const;

private:
    struct State;

    ItemView viewOf(State& state);

    std::vector<std::unique_ptr<const Project>> projects_; ///< all that there were
    std::atomic<const Project*> project_{nullptr};         ///< the latest of them
    WriteHold write_hold_;
    Clock wall_clock_;
    Clock steady_clock_;
    double start_;
    mutable std::mutex mutex_;
    std::map<std::string, std::unique_ptr<State>> states_;
};

} // namespace tovik_service::plant

#endif
