#include "bindings/linux/modem/tables/registration.h"

#include <algorithm>
#include <iterator>

#include "bindings/linux/modem/tables/modem_numbers.h"

namespace binding {

namespace {

// MMModem3gppRegistrationState, which follows <stat> of 3GPP TS 27.007, 10.1.20.
enum Registration : std::int64_t {
    kIdle = 0,
    kHome = 1,
    kSearching = 2,
    kDenied = 3,
    kUnknown = 4,
    kRoaming = 5,
    kHomeSmsOnly = 6,
    kRoamingSmsOnly = 7,
    kEmergencyOnly = 8,
    kHomeCsfbNotPreferred = 9,
    kRoamingCsfbNotPreferred = 10,
    kAttachedRlos = 11,
};

// MMModemPowerState.
constexpr std::int64_t kPowerOff = 1;
constexpr std::int64_t kPowerLow = 2;
constexpr std::int64_t kPowerOn = 3;

sys_service_status_e OfModemState(std::int64_t state) {
    if (state >= kModemRegistered) {
        return SYS_SERVICE_AVAILABLE;
    }
    return state == kModemSearching ? SYS_SERVICE_SEARCHING : SYS_SERVICE_NONE;
}

struct SharedCountry {
    int first;
    int last;
};

/// Countries that have several mobile country codes (ITU-T E.212).
constexpr SharedCountry kSharedCountries[] = {
    {234, 235},  // United Kingdom
    {310, 316},  // United States
    {404, 406},  // India
    {440, 441},  // Japan
    {460, 461},  // China
};

/// A mobile country code: three digits at the beginning of an operator's code and of an IMSI.
std::optional<int> CountryCode(std::string_view text) {
    constexpr std::size_t kDigits = 3;
    if (text.size() < kDigits) {
        return std::nullopt;
    }
    int code = 0;
    for (const char digit : text.substr(0, kDigits)) {
        if (digit < '0' || digit > '9') {
            return std::nullopt;
        }
        code = code * 10 + (digit - '0');
    }
    return code;
}

bool IsSameCountry(int one, int other) {
    return one == other || std::any_of(std::begin(kSharedCountries), std::end(kSharedCountries),
                                       [=](const SharedCountry& country) {
                                           return country.first <= std::min(one, other) &&
                                                  std::max(one, other) <= country.last;
                                       });
}

}  // namespace

sys_service_status_e ServiceStatusOf(std::optional<std::int64_t> modemState,
                                     std::optional<std::int64_t> registration) {
    const std::int64_t state = modemState.value_or(kModemStateUnknown);
    // A modem whose radio is off may still tell its last registration.
    if (modemState.has_value() && state < kModemEnabled) {
        return SYS_SERVICE_NONE;
    }
    switch (registration.value_or(kUnknown)) {
        case kHome:
        case kRoaming:
        case kHomeSmsOnly:
        case kRoamingSmsOnly:
        case kHomeCsfbNotPreferred:
        case kRoamingCsfbNotPreferred:
            return SYS_SERVICE_AVAILABLE;
        case kSearching:
            return SYS_SERVICE_SEARCHING;
        case kDenied:
        case kEmergencyOnly:
        case kAttachedRlos:
            return SYS_SERVICE_NONE;
        case kIdle:
        default:
            return OfModemState(state);
    }
}

sys_roaming_e RoamingOf(std::int64_t registration, std::string_view operatorCode,
                        std::string_view imsi) {
    if (registration != kRoaming && registration != kRoamingSmsOnly &&
        registration != kRoamingCsfbNotPreferred) {
        return SYS_ROAMING_NONE;
    }
    const auto network = CountryCode(operatorCode);
    const auto sim = CountryCode(imsi);
    return network && sim && IsSameCountry(*network, *sim) ? SYS_ROAMING_DOMESTIC
                                                           : SYS_ROAMING_INTERNATIONAL;
}

sys_data_connection_status_e DataConnectionStatusOf(std::optional<std::int64_t> modemState,
                                                    const BearerFacts& bearers) {
    const std::int64_t state = modemState.value_or(kModemStateUnknown);
    if (state == kModemDisconnecting) {
        return SYS_DATA_CONNECTION_DISCONNECTING;
    }
    // A bearer tells earlier than the modem that it is connected.
    const bool connected = bearers.known ? bearers.connected : state == kModemConnected;
    if (connected) {
        return bearers.known && bearers.suspended ? SYS_DATA_CONNECTION_DORMANT
                                                  : SYS_DATA_CONNECTION_CONNECTED;
    }
    switch (state) {
        case kModemConnecting:
            return SYS_DATA_CONNECTION_CONNECTING;
        case kModemInitializing:
        case kModemEnabling:
            return SYS_DATA_CONNECTION_INITIALIZING;
        default:
            return SYS_DATA_CONNECTION_READY;
    }
}

std::optional<int> RadioEnabledOf(std::optional<std::int64_t> modemState,
                                  std::optional<std::int64_t> powerState) {
    const std::int64_t power = powerState.value_or(0);
    if (power == kPowerOff || power == kPowerLow) {
        return 0;
    }
    if (modemState.value_or(kModemStateUnknown) >= kModemEnabled) {
        return 1;
    }
    return power == kPowerOn ? std::optional(1) : std::nullopt;
}

}  // namespace binding
