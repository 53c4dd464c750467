// What ModemManager tells of one modem, its SIM and its bearers.
#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "bindings/device/device.h"

namespace binding {

struct SimSlot {
    bool hasSim = false;
    std::string operatorName;

    bool operator==(const SimSlot&) const = default;
};

/// What a bearer has counted since it was connected.
struct BearerStats {
    std::uint64_t seconds = 0;
    std::uint64_t received = 0;
    std::uint64_t transmitted = 0;

    bool operator==(const BearerStats&) const = default;
};

/// A member without a value has not been told.
struct Modem {
    std::string path;                   ///< of the object
    std::optional<std::int64_t> state;  ///< MMModemState

    std::optional<sys_service_status_e> serviceStatus;
    std::optional<sys_roaming_e> roaming;
    std::optional<std::string> networkName;
    std::optional<std::string> networkId;
    std::optional<int> rejectCode;

    std::optional<int> radioEnabled;
    std::optional<int> enabledTechnologies;
    std::optional<sys_technology_e> technology;
    std::optional<sys_wan_5g_mode_e> fiveGMode;
    std::optional<sys_5g_type_e> fiveGType;
    std::optional<int> signalBars;
    std::optional<int> signalToNoise;  ///< dB
    std::optional<int> physicalCell;
    std::optional<int> umtsBand;
    std::optional<int> lteBand;
    std::optional<int> nrBand;
    std::optional<int> lteBandwidth;  ///< MHz, as is the next
    std::optional<int> nrBandwidth;

    std::optional<sys_sim_status_e> simStatus;
    std::optional<bool> carrierBlocked;
    std::optional<std::string> imsi;
    std::optional<GroupId> firstGroupId;
    std::optional<GroupId> secondGroupId;
    int activeSlot = 1;
    std::vector<SimSlot> slots;

    std::optional<int> accountStatus;  ///< sys_account_status_e
    std::optional<sys_data_connection_status_e> dataConnectionStatus;
    std::optional<std::string> interface;  ///< network interface of the connected bearer
    std::optional<BearerStats> bearerStats;
};

/// Path of the modem in @p tree that the device uses, empty when there is none: one that works
/// rather than one that has failed, and of several the first one that ModemManager has found.
std::string ModemPath(const nlohmann::json& tree);

/// Reads the modem @p path of @p tree, which holds ModemManager's objects by path, interface and
/// property. @p cells is the newest reply of its GetCellInfo, or null.
Modem ReadModem(const nlohmann::json& tree, const std::string& path, const nlohmann::json& cells);

/// Writes into the record what @p modem tells.
void FillModem(const Modem& modem, Device& device);

/// Makes all calls that FillModem answers fail with @p code.
void FailModem(Device& device, int code);

}  // namespace binding
