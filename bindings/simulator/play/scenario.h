// Scenarios: what happens to a device as time passes.
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
    /// Whether it is a step of a ramp that differs from the step before it only in its number. The
    /// document is not read again to check such a step.
    bool differsOnlyInNumber = false;
    /// The change is left out while the condition does not hold. Null for a change without a
    /// condition; the steps of a ramp share one.
    std::shared_ptr<const Condition> condition = nullptr;
};

/// All that happens at one time.
struct Instant {
    std::vector<std::string> said;  ///< texts of the events that begin, for people
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
/// line, when anything in it is wrong.
Scenario ReadScenario(const std::string& file, const std::string& text);

/// Throws std::runtime_error unless the device @p document can go through the whole of @p scenario.
/// Each change is tried, whether or not its condition holds, and each condition must be one that
/// can hold.
void MustBePlayable(const Scenario& scenario, nlohmann::ordered_json document);

}  // namespace binding
