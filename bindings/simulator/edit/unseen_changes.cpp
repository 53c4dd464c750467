#include "bindings/simulator/edit/unseen_changes.h"

#include <array>
#include <nlohmann/json.hpp>

#include "bindings/simulator/edit/device_path.h"

namespace binding {

namespace {

using json = nlohmann::ordered_json;

/// What the service reads once, when it is asked for the first time, and then keeps.
struct Kept {
    const char* section;
    const char* call;
};

constexpr std::array<Kept, 11> kKept = {{
    {"sys", "getSambaCarrierEnabled"},
    {"sys", "getGPSCarrierEnabled"},
    {"sys", "getMTSMSCarrierEnabled"},
    {"sys", "getWiFiCarrierEnabled"},
    {"sys", "getWiFiGuestCarrierEnabled"},
    {"sys", "getPCOCarrierEnabled"},
    {"sys", "getNUACarrierEnabled"},
    {"sys", "getOmadmFumoCarrierEnabled"},
    {"sys", "getMultiSimEnabled"},
    {"webui", "commonFeatures"},
    {"webui", "commonConfigurations"},
}};

/// What both values are, in brackets, if that is short.
std::string Values(const json* old, const json* now) {
    if (old == nullptr || now == nullptr || old->is_structured() || now->is_structured()) {
        return "";
    }
    return " (" + old->dump() + " before, " + now->dump() + " now)";
}

}  // namespace

std::vector<std::string> UnseenChanges(const json& before, const json& after) {
    std::vector<std::string> changes;
    for (const Kept& kept : kKept) {
        const KeyPath path = {kept.section, kept.call};
        const json* const old = FindAt(before, path);
        const json* const now = FindAt(after, path);
        const bool isSame = old == nullptr || now == nullptr ? old == now : *old == *now;
        if (!isSame) {
            changes.push_back(PathText(path) + Values(old, now));
        }
    }
    return changes;
}

}  // namespace binding
