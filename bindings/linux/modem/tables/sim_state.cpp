#include "bindings/linux/modem/tables/sim_state.h"

#include "bindings/linux/modem/tables/modem_numbers.h"

namespace binding {

namespace {

// MMModemLock.
enum Lock : std::int64_t {
    kUnknown = 0,
    kNone = 1,
    kSimPin = 2,
    kSimPin2 = 3,
    kSimPuk = 4,
    kSimPuk2 = 5,
    kPhSpPin = 6,
    kPhSpPuk = 7,
    kPhNetPin = 8,
    kPhNetPuk = 9,
    kPhSimPin = 10,
    kPhCorpPin = 11,
    kPhCorpPuk = 12,
    kPhFsimPin = 13,
    kPhFsimPuk = 14,
    kPhNetsubPin = 15,
    kPhNetsubPuk = 16,
};

// MMModemStateFailedReason.
constexpr std::int64_t kSimMissing = 2;
constexpr std::int64_t kSimError = 3;
constexpr std::int64_t kEsimWithoutProfiles = 5;

sys_sim_status_e OfFailedModem(std::int64_t reason) {
    switch (reason) {
        case kSimMissing:
        case kEsimWithoutProfiles:
            return SYS_SIM_NOT_FOUND;
        case kSimError:
            return SYS_SIM_ERROR;
        default:
            return SYS_SIM_FAILURE;
    }
}

std::optional<sys_sim_status_e> OfLock(std::int64_t lock) {
    switch (lock) {
        case kNone:
        // The second PIN protects a few settings of the SIM; the modem works without it.
        case kSimPin2:
        case kSimPuk2:
            return SYS_SIM_READY;
        case kSimPin:
            return SYS_SIM_PIN_LOCKED;
        case kSimPuk:
            return SYS_SIM_PUK_LOCKED;
        case kPhSimPin:
        case kPhFsimPin:
        case kPhFsimPuk:
            return SYS_SIM_LOCKED;
        default:
            return IsCarrierLock(lock) ? std::optional(SYS_SIM_RESTRICTED) : std::nullopt;
    }
}

}  // namespace

bool IsCarrierLock(std::int64_t requiredUnlock) {
    switch (requiredUnlock) {
        case kPhSpPin:
        case kPhSpPuk:
        case kPhNetPin:
        case kPhNetPuk:
        case kPhCorpPin:
        case kPhCorpPuk:
        case kPhNetsubPin:
        case kPhNetsubPuk:
            return true;
        default:
            return false;
    }
}

std::optional<sys_sim_status_e> SimStatusOf(const SimFacts& facts) {
    const std::int64_t state = facts.modemState.value_or(kModemStateUnknown);
    if (state == kModemFailed) {
        return OfFailedModem(facts.failedReason.value_or(0));
    }
    const auto ofLock = OfLock(facts.requiredUnlock.value_or(kUnknown));
    // A lock that waits for a code proves that there is a SIM. "No lock" does not.
    if (ofLock.has_value() && ofLock != SYS_SIM_READY) {
        return ofLock;
    }
    if (facts.present == false) {
        return SYS_SIM_NOT_FOUND;
    }
    if (ofLock.has_value()) {
        return ofLock;
    }
    if (state == kModemLocked) {
        return SYS_SIM_LOCKED;
    }
    return state >= kModemDisabled ? std::optional(SYS_SIM_READY) : std::nullopt;
}

}  // namespace binding
