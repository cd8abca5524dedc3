#include "tools/service/plant/plant.h"

#include <limits>
#include <utility>

namespace tovik_service::plant {

struct Plant::State
{
    const Group* group = nullptr;
    const Item* item = nullptr;
    std::unique_ptr<Generator> generator;
    Json written;
    double held_until = -std::numeric_limits<double>::infinity();
    Json last_value;
    std::int64_t update_time = 0;
};

Plant::Plant(Project project, WriteHold write_hold, Clock wall_clock, Clock steady_clock)
    : write_hold_(write_hold),
      wall_clock_(std::move(wall_clock)),
      steady_clock_(std::move(steady_clock)),
      start_(steady_clock_())
{
    replace(std::move(project));
}

Plant::~Plant() = default;

void Plant::replace(Project project)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    projects_.push_back(std::make_unique<const Project>(std::move(project)));
    project_ = projects_.back().get();
    states_.clear();
    for (const Group& group : projects_.back()->groups) {
        for (const Item& item : group.items) {
            auto state = std::make_unique<State>();
            state->group = &group;
            state->item = &item;
            state->generator = makeGenerator(item.generator, item.type);
            viewOf(*state);
            states_.emplace(item.id, std::move(state));
        }
    }
}

const Group* Plant::findGroup(const std::string& id) const
{
    for (const Group& group : project().groups) {
        if (group.id == id)
            return &group;
    }
    return nullptr;
}

std::optional<ItemView> Plant::item(const std::string& id)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = states_.find(id);
    if (found == states_.end())
        return std::nullopt;
    return viewOf(*found->second);
}

std::vector<ItemView> Plant::itemsOf(const Group& group)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    std::vector<ItemView> views;
    for (const Item& item : group.items) {
        // The group may be of the project before.
        const auto found = states_.find(item.id);
        if (found != states_.end())
            views.push_back(viewOf(*found->second));
    }
    return views;
}

std::vector<ItemView> Plant::allItems()
{
    std::vector<ItemView> views;
    for (const Group& group : project().groups) {
        for (ItemView& view : itemsOf(group))
            views.push_back(std::move(view));
    }
    return views;
}

WriteResult Plant::write(const std::string& id, const Json& value, Writer writer)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = states_.find(id);
    if (found == states_.end())
        return {WriteOutcome::UnknownItem, "there is no item \"" + id + "\""};
    State& state = *found->second;
    if (writer == Writer::Client && state.item->read_only)
        return {WriteOutcome::ReadOnly, "item \"" + id + "\" is read-only"};
    if (writer == Writer::Client && !state.group->isWritable()) {
        return {WriteOutcome::ReadOnly,
                "group \"" + state.group->id + "\" gives no write permission"};
    }
    CheckedValue checked = checkValue(state.item->type, state.item->length, value);
    if (!checked.ok()) {
        return {WriteOutcome::BadValue, "item \"" + id + "\" of type " +
                                            typeName(state.item->type) + " " + checked.problem};
    }
    // A constant has nothing to go back to, so what is written to it stays.
    const bool for_ever = !write_hold_ || state.item->generator.kind == GeneratorKind::Constant;
    state.written = std::move(checked.value);
    state.held_until =
        for_ever ? std::numeric_limits<double>::infinity() : steady_clock_() + *write_hold_;
    viewOf(state);
    state.update_time = static_cast<std::int64_t>(wall_clock_());
    return {};
}

std::string Plant::groupIdOf(const std::string& item_id) const
{
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = states_.find(item_id);
    return found == states_.end() ? std::string() : found->second->group->id;
}

ItemView Plant::viewOf(State& state)
{
    const double now = steady_clock_();
    Json value = now < state.held_until ? state.written : state.generator->valueAt(now - start_);
    if (state.last_value != value) {
        state.last_value = value;
        state.update_time = static_cast<std::int64_t>(wall_clock_());
    }
    return {state.group, state.item, std::move(value), state.update_time};
}

} // namespace tovik_service::plant
