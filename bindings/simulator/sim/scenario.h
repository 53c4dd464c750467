// Scenarios: what happens to a device in the course of time.
#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace simulator {

using Milliseconds = std::chrono::duration<std::int64_t, std::milli>;

/// One change of the device.
struct Change {
    std::string where;  ///< file, line and key that ask for it
    std::function<void(nlohmann::ordered_json&)> apply;
    /// Whether it is a step of a ramp like the one before it, which only another number tells
    /// apart.
    bool isLikeTheLast = false;
};

/// All that happens at one time.
struct Instant {
    std::vector<std::string> said;  ///< what the events that begin say, for people
    std::vector<Change> changes;

    /// Makes all changes. Throws std::runtime_error that says which one cannot be made.
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

/// Throws std::runtime_error unless the whole of @p scenario can happen to the device @p document.
void MustSuit(const Scenario& scenario, nlohmann::ordered_json document);

}  // namespace simulator
