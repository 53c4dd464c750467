// Scenarios: what happens to a device in the course of time.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

namespace binding {

using Milliseconds = std::chrono::duration<std::int64_t, std::milli>;

/// A value that the device must have.
struct Requirement {
    std::string where;  ///< file, line and key that ask for it
    std::string path;
    std::shared_ptr<const nlohmann::ordered_json> value;
};

using Condition = std::vector<Requirement>;

/// One change of the device.
struct Change {
    std::string where;  ///< file, line and key that ask for it
    std::function<void(nlohmann::ordered_json&)> apply;
    /// Whether it is a step of a ramp like the one before it, which only another number tells
    /// apart.
    bool isLikeTheLast = false;
    /// Where it does not hold, the change is left out. Null where there is none; the steps of a
    /// ramp share theirs.
    std::shared_ptr<const Condition> condition = nullptr;
};

/// All that happens at one time.
struct Instant {
    std::vector<std::string> said;  ///< what the events that begin say, for people
    std::vector<Change> changes;

    /// Makes all changes whose conditions hold. Throws std::runtime_error that says which one
    /// cannot be made.
    void Apply(nlohmann::ordered_json& document) const;
};

struct Scenario {
    std::string title;
    /// When it ends, or begins again.
    Milliseconds duration{0};
    std::map<Milliseconds, Instant> instants;
};

/// Reads the scenario @p text. Throws std::runtime_error, whose text begins with @p file and the
/// line, when anything in it is not as it must be.
Scenario ReadScenario(const std::string& file, const std::string& text);

/// Throws std::runtime_error unless the whole of @p scenario can happen to the device @p document,
/// each change whatever its condition, and unless each condition is one that can hold.
void MustSuit(const Scenario& scenario, nlohmann::ordered_json document);

}  // namespace binding
