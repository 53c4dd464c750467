// State of the SIM, from what ModemManager tells of the modem's lock.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/sysint.h"

namespace binding {

/// What is known of the SIM that the modem uses. Numbers are ModemManager's.
struct SimFacts {
    std::optional<std::int64_t> modemState;      ///< MMModemState
    std::optional<std::int64_t> failedReason;    ///< MMModemStateFailedReason
    std::optional<std::int64_t> requiredUnlock;  ///< MMModemLock
    std::optional<bool> present;                 ///< whether the modem has an object for a SIM
};

/// None while the modem has not found out.
std::optional<sys_sim_status_e> SimStatusOf(const SimFacts& facts);

/// Whether the device refuses the SIM because of its carrier: a lock to a network, part of a
/// network, service provider or company (3GPP TS 22.022).
bool IsCarrierLock(std::int64_t requiredUnlock);

}  // namespace binding
