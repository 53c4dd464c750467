// What changes while a device is recorded.
#pragma once

#include <chrono>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "tools/json_output.h"

/// A value of the document that has changed.
struct ValueChange {
    std::vector<std::string> path;
    Json value;
};

/// What changes at one time.
struct Moment {
    std::chrono::milliseconds time;
    std::vector<ValueChange> changes;
};

class Timeline {
  public:
    using Time = std::chrono::milliseconds;

    explicit Timeline(Json newFirst) : first(std::move(newFirst)), latest(first) {}

    /// Adds what makes @p device, a document of the same form, differ from the one before. Returns
    /// false, and adds nothing, when a scenario cannot hold so many changes or would be too long to
    /// be read.
    bool Add(Time time, Json device);

    /// The device at the beginning.
    const Json& First() const { return first; }

    /// The scenario, which lasts until @p end.
    Json Scenario(Time end) const;

  private:
    using Path = std::vector<std::string>;

    Json Beginning() const;

    Json first;
    Json latest;
    std::vector<Moment> moments;
    std::set<Path> changed;
    std::size_t changeCount = 0;
    /// Of the scenario as text, without what it begins and ends with.
    std::size_t bytes = 0;
};
