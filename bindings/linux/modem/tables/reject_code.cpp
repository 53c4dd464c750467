#include "bindings/linux/modem/tables/reject_code.h"

#include <algorithm>
#include <iterator>

namespace binding {

namespace {

constexpr std::string_view kPrefix = "org.freedesktop.ModemManager1.Error.MobileEquipment.";

struct Row {
    std::string_view name;
    int cause;
};

/// ModemManager names an error after the modem's +CME ERROR. 3GPP TS 27.007, 9.2.2, has one for
/// each cause, with the cause beside it.
constexpr Row kRejects[] = {
    {"ImsiUnknownInHss", 2},
    {"IllegalUe", 3},
    {"ImsiUnknownInVlr", 4},
    {"ImeiNotAccepted", 5},
    {"IllegalMe", 6},
    {"PsServicesNotAllowed", 7},
    {"PsAndNonPsServicesNotAllowed", 8},
    {"UeIdentityNotDerivedFromNetwork", 9},
    {"ImplicitlyDetached", 10},
    {"PlmnNotAllowed", 11},
    {"AreaNotAllowed", 12},
    {"RoamingNotAllowedInArea", 13},
    {"PsServicesNotAllowedInPlmn", 14},
    {"NoCellsInArea", 15},
    {"MscTemporarilyNotReachable", 16},
    {"NetworkFailureAttach", 17},
    {"CsDomainUnavailable", 18},
    {"EsmFailure", 19},
    {"Congestion", 22},
    {"NotAuthorizedForCsg", 25},
    {"InsufficientResources", 26},
    {"MissingOrUnknownApn", 27},
    {"UnknownPdpAddressOrType", 28},
    {"UserAuthenticationFailed", 29},
    // The error that modems send for cause 29 when they know only packet data of 2G and 3G.
    {"PdpAuthFailure", 29},
    {"ActivationRejectedByGgsnOrGw", 30},
    {"ActivationRejectedUnspecified", 31},
    {"ServiceOptionNotSupported", 32},
    {"ServiceOptionNotSubscribed", 33},
    {"ServiceOptionOutOfOrder", 34},
    {"OperatorDeterminedBarring", 8},
    {"NetworkFailureActivation", 38},
    {"Ipv4OnlyAllowed", 50},
    {"Ipv6OnlyAllowed", 51},
    {"MaximumNumberOfBearersReached", 65},
    {"RequestedApnNotSupported", 66},
};

}  // namespace

std::optional<int> RejectCodeOf(std::string_view errorName) {
    if (errorName.substr(0, kPrefix.size()) != kPrefix) {
        return std::nullopt;
    }
    const std::string_view name = errorName.substr(kPrefix.size());
    const auto* const found = std::find_if(std::begin(kRejects), std::end(kRejects),
                                           [name](const Row& row) { return row.name == name; });
    return found == std::end(kRejects) ? std::nullopt : std::optional(found->cause);
}

}  // namespace binding
