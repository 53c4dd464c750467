#pragma once

#include <optional>
#include <string>

/// Texts about the lock of the SIM in use. One that could not be read is absent.
struct SimLockTexts {
    std::optional<std::string> networkRejectCode;
    std::optional<std::string> carrierBlocked;
};

/// Whether the lock of a SIM with @p simStatus, a sys_sim_status_e, can be read.
bool IsUsableSim(int simStatus);

/// Reads the lock of the SIM in use and its last reject by the network. Logs in the name of the
/// function with @p signature.
SimLockTexts ReadSimLock(const char* signature);
