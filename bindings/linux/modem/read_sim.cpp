#include <nlohmann/json.hpp>

#include "bindings/linux/bus/tree.h"
#include "bindings/linux/modem/modem_manager.h"
#include "bindings/linux/modem/read_parts.h"
#include "bindings/linux/modem/tables/sim_state.h"
#include "bindings/linux/modem/tree_lists.h"

namespace binding {

namespace {

using nlohmann::json;

/// MMSimEsimStatus: a slot with such an eSIM is as good as empty.
constexpr std::int64_t kEsimNoProfiles = 1;

/// 3GPP TS 23.003, 2.2: an IMSI has at most 15 digits.
std::optional<std::string> ReadImsi(const json& sim) {
    constexpr std::size_t kMostDigits = 15;
    auto imsi = Text(sim, "Imsi");
    return imsi && imsi->size() <= kMostDigits && IsDigits(*imsi) ? imsi : std::nullopt;
}

std::optional<GroupId> ReadGroupId(const json& sim, const char* name) {
    const json& bytes = Member(sim, name);
    GroupId group;
    if (!bytes.is_array() || bytes.empty() || bytes.size() > group.bytes.size()) {
        return std::nullopt;
    }
    for (const json& byte : bytes) {
        const auto number = Integer(byte);
        if (!number || *number < 0 || *number > UINT8_MAX) {
            return std::nullopt;
        }
        group.bytes.at(group.length++) = static_cast<std::uint8_t>(*number);
    }
    return group;
}

}  // namespace

void ReadSim(const json& tree, const json& properties, Modem& modem) {
    const std::string path = Text(properties, "Sim").value_or("");
    const json& sim = Member(Member(tree, path), kSimInterface);
    SimFacts facts;
    facts.modemState = modem.state;
    facts.failedReason = Number(properties, "StateFailedReason");
    facts.requiredUnlock = Number(properties, "UnlockRequired");
    if (!path.empty()) {
        facts.present = path != kNoObject;
    }
    modem.simStatus = SimStatusOf(facts);
    if (facts.requiredUnlock) {
        modem.carrierBlocked = IsCarrierLock(*facts.requiredUnlock);
    }
    modem.imsi = ReadImsi(sim);
    modem.firstGroupId = ReadGroupId(sim, "Gid1");
    modem.secondGroupId = ReadGroupId(sim, "Gid2");

    for (const std::string& slot : Texts(properties, "SimSlots")) {
        const json& slotSim = Member(Member(tree, slot), kSimInterface);
        const bool hasSim = slot != kNoObject && Number(slotSim, "EsimStatus") != kEsimNoProfiles;
        modem.slots.push_back({hasSim, Text(slotSim, "OperatorName").value_or("")});
    }
    if (modem.slots.empty()) {
        // A modem that does not know slots has one.
        const bool hasSim = modem.simStatus.has_value() && modem.simStatus != SYS_SIM_NOT_FOUND;
        modem.slots.push_back({hasSim, Text(sim, "OperatorName").value_or("")});
    }
    const auto primary = Number(properties, "PrimarySimSlot").value_or(1);
    const auto count = static_cast<std::int64_t>(modem.slots.size());
    modem.activeSlot = static_cast<int>(primary >= 1 && primary <= count ? primary : 1);
}

}  // namespace binding
