#include "bindings/linux/update/rauc.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "bindings/linux/bus/tree.h"
#include "bindings/linux/text.h"

namespace binding {

namespace {

/// Percentage in the property Progress, which is a list of percentage, text and nesting depth.
std::int32_t Percent(const nlohmann::json& installer) {
    const nlohmann::json& progress = Member(installer, "Progress");
    if (!progress.is_array() || progress.empty() || !progress[0].is_number_integer()) {
        return 0;
    }
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(progress[0].get<std::int64_t>(), 0, 100));
}

}  // namespace

UpdateState NextRaucState(const UpdateState& before, const nlohmann::json& installer) {
    UpdateState state;
    const std::string problem = Text(installer, "LastError").value_or("");
    if (Text(installer, "Operation").value_or("idle") != "idle") {
        state.status = UpdateStatus::installing;
        state.percent = Percent(installer);
    } else if (!problem.empty()) {
        state.status = UpdateStatus::failed;
        state.problem = Printable(problem, 256);
    } else if (before.status == UpdateStatus::installing ||
               before.status == UpdateStatus::installed) {
        state.status = UpdateStatus::installed;
        state.percent = 100;
        state.version = before.version;
    } else if (before.status == UpdateStatus::failed) {
        // A RAUC that has started since does not know why.
        state = before;
    }
    return state;
}

UpdateState RaucStateAfterItsEnd(const UpdateState& before) {
    if (before.status != UpdateStatus::installing) {
        return before;
    }
    UpdateState state;
    state.status = UpdateStatus::failed;
    state.problem = "RAUC has ended during the installation";
    return state;
}

bool AreSlots(const nlohmann::json& slots) {
    return slots.is_array() &&
           std::all_of(slots.begin(), slots.end(), [](const nlohmann::json& slot) {
               return slot.is_array() && slot.size() == 2 && slot[0].is_string() &&
                      slot[1].is_object();
           });
}

std::string LastInstalledVersion(const nlohmann::json& slots) {
    if (!AreSlots(slots)) {
        return "";
    }
    std::string version;
    std::string newest;
    for (const nlohmann::json& slot : slots) {
        const nlohmann::json& properties = slot[1];
        // Times like 2026-11-22T15:04:31Z are in order as texts.
        const std::string time = Text(properties, "installed.timestamp").value_or("");
        if (time > newest) {
            newest = time;
            version = Printable(Text(properties, "bundle.version").value_or(""), 255);
        }
    }
    return version;
}

}  // namespace binding
