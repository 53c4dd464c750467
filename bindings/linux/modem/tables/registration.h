// Registration with the network, and the data connection. Numbers are ModemManager's.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/sysint.h"

namespace binding {

/// @p modemState is an MMModemState, @p registration an MMModem3gppRegistrationState; CDMA modems
/// have none.
sys_service_status_e ServiceStatusOf(std::optional<std::int64_t> modemState,
                                     std::optional<std::int64_t> registration);

/// Roaming is domestic where the network's country is that of the SIM. If either is not known, it
/// counts as international, which is the one that users must be warned of.
sys_roaming_e RoamingOf(std::int64_t registration, std::string_view operatorCode,
                        std::string_view imsi);

/// What is known of the bearers that carry data.
struct BearerFacts {
    bool known = false;  ///< whether the bearers have told anything; if not, ignore the rest
    bool connected = false;
    bool suspended = false;
};

sys_data_connection_status_e DataConnectionStatusOf(std::optional<std::int64_t> modemState,
                                                    const BearerFacts& bearers);

/// 1 with the radio on, 0 in airplane mode; none when nothing tells. @p powerState is an
/// MMModemPowerState.
std::optional<int> RadioEnabledOf(std::optional<std::int64_t> modemState,
                                  std::optional<std::int64_t> powerState);

}  // namespace binding
