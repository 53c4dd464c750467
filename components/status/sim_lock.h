#pragma once

#include <optional>
#include <string>

/// Texts of the lock of the SIM in use; those that the device did not tell are absent.
struct SimLockTexts {
    std::optional<std::string> networkRejectCode;
    std::optional<std::string> carrierBlocked;
};

/// Whether a SIM with @p simStatus, a sys_sim_status_e, can be asked for its lock.
bool IsUsableSim(int simStatus);

/// Reads the lock of the SIM in use and its last reject by the network. Logs in the name of the
/// function with @p signature.
SimLockTexts ReadSimLock(const char* signature);
