#include <algorithm>
#include <cstdlib>
#include <limits>
#include <nlohmann/json.hpp>

#include "bindings/linux/bus/tree.h"
#include "bindings/linux/modem/modem.h"
#include "bindings/linux/modem/modem_manager.h"
#include "bindings/linux/modem/read_parts.h"
#include "bindings/linux/modem/tables/account_status.h"
#include "bindings/linux/modem/tables/modem_numbers.h"
#include "bindings/linux/modem/tables/registration.h"
#include "bindings/linux/modem/tables/reject_code.h"
#include "bindings/linux/modem/tree_lists.h"

namespace binding {

namespace {

using nlohmann::json;

std::optional<BearerStats> ReadBearerStats(const json& bearer) {
    const json& stats = Member(bearer, "Stats");
    const auto seconds = Number(stats, "duration");
    const auto received = Number(stats, "rx-bytes");
    const auto transmitted = Number(stats, "tx-bytes");
    if (!seconds && !received && !transmitted) {
        return std::nullopt;
    }
    const auto counted = [](std::optional<std::int64_t> number) {
        return static_cast<std::uint64_t>(std::max<std::int64_t>(number.value_or(0), 0));
    };
    return BearerStats{counted(seconds), counted(received), counted(transmitted)};
}

void ReadBearers(const json& tree, const json& properties, Modem& modem) {
    BearerFacts facts;
    for (const std::string& path : Texts(properties, "Bearers")) {
        const json& bearer = Member(Member(tree, path), kBearerInterface);
        const auto connected = Boolean(bearer, "Connected");
        facts.known = facts.known || connected.has_value();
        if (connected == true && !facts.connected) {
            facts.connected = true;
            facts.suspended = Boolean(bearer, "Suspended").value_or(false);
            modem.interface = NonEmptyText(bearer, "Interface");
            modem.bearerStats = ReadBearerStats(bearer);
        }
        const json& error = Element(bearer, "ConnectionError", 0);
        if (!modem.rejectCode && connected != true && error.is_string()) {
            modem.rejectCode = RejectCodeOf(error.get<std::string>());
        }
    }
    modem.dataConnectionStatus = DataConnectionStatusOf(modem.state, facts);
}

/// The number at the end of @p path. A number that is no such counts as the last.
long PathNumber(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string digits = slash == std::string::npos ? "" : path.substr(slash + 1);
    constexpr std::size_t kMostDigits = 9;
    return IsDigits(digits) && digits.size() <= kMostDigits
               ? std::strtol(digits.c_str(), nullptr, 10)
               : std::numeric_limits<long>::max();
}

}  // namespace

void ReadNetwork(const json& network, const json& sim, Modem& modem) {
    const auto registration = Number(network, "RegistrationState");
    modem.serviceStatus = ServiceStatusOf(modem.state, registration);
    modem.accountStatus = AccountStatusOf(Member(network, "Pco"), modem.imsi.value_or(""));
    const json& rejection = Member(network, "NetworkRejection");
    const auto cause = Number(rejection, "error");
    if (cause && *cause > 0 && *cause <= UINT8_MAX) {
        modem.rejectCode = static_cast<int>(*cause);
    }
    if (modem.serviceStatus != SYS_SERVICE_AVAILABLE) {
        return;
    }
    modem.networkId = NonEmptyText(network, "OperatorCode");
    modem.roaming =
        RoamingOf(registration.value_or(0), modem.networkId.value_or(""), modem.imsi.value_or(""));
    modem.networkName = NonEmptyText(network, "OperatorName");
    if (!modem.networkName && modem.roaming == SYS_ROAMING_NONE) {
        modem.networkName = NonEmptyText(sim, "OperatorName");
    }
    if (!modem.networkName) {
        modem.networkName = modem.networkId;
    }
}

std::string ModemPath(const json& tree) {
    std::string best;
    bool bestHasFailed = true;
    if (!tree.is_object()) {
        return best;
    }
    for (const auto& [path, object] : tree.items()) {
        const json& properties = Member(object, kModemInterface);
        if (!properties.is_object()) {
            continue;
        }
        const bool hasFailed = Number(properties, "State") == kModemFailed;
        const bool isBetter =
            hasFailed == bestHasFailed ? PathNumber(path) < PathNumber(best) : bestHasFailed;
        if (best.empty() || isBetter) {
            best = path;
            bestHasFailed = hasFailed;
        }
    }
    return best;
}

Modem ReadModem(const json& tree, const std::string& path, const json& cells) {
    Modem modem;
    modem.path = path;
    const json& object = Member(tree, path);
    const json& properties = Member(object, kModemInterface);
    modem.state = Number(properties, "State");
    ReadSim(tree, properties, modem);
    const std::string simPath = Text(properties, "Sim").value_or("");
    ReadNetwork(Member(object, kModem3gppInterface), Member(Member(tree, simPath), kSimInterface),
                modem);
    ReadRadio(object, properties, cells, modem);
    ReadBearers(tree, properties, modem);
    return modem;
}

}  // namespace binding
