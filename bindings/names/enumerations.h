// Names for the values of the platform's enumerations and for the codes of bindings. A name is that
// of the enumerator, in lower case and without the prefix that all enumerators of its enumeration
// have. Tools print these names, and documents may have them in place of numbers.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "platform/sysint.h"

namespace binding {

struct EnumerationName {
    std::int64_t value;
    const char* name;
};

using Enumeration = std::span<const EnumerationName>;

/// Name of @p value; null when it has none.
const char* NameOf(std::int64_t value, Enumeration names);

/// The value that is called @p name.
std::optional<std::int64_t> ValueOf(std::string_view name, Enumeration names);

/// All names, in the order of the enumerators.
std::vector<std::string> AllNames(Enumeration names);

/// @p texts with commas between them.
std::string Listed(const std::vector<std::string>& texts);

// platform/sysint.h

extern const Enumeration kSysResult;
extern const Enumeration kSimStatus;
extern const Enumeration kTechnology;
extern const Enumeration kRoaming;
extern const Enumeration kFiveGType;
extern const Enumeration kTrafficStatus;
extern const Enumeration kWanFiveGMode;
extern const Enumeration kServiceStatus;
extern const Enumeration kDataConnectionStatus;
extern const Enumeration kAccountStatus;
extern const Enumeration kGpsStatus;
extern const Enumeration kConnectionKind;
extern const Enumeration kBatteryDetection;
extern const Enumeration kChargingSource;

// platform/webui.h

extern const Enumeration kWebuiStatus;

// platform/msgbus.h and platform/notification.h

extern const Enumeration kMsgbusResult;
extern const Enumeration kSeverity;

// bindings/device/codes.h; a webui_ call returns kWebuiCodeBase plus the code.

extern const Enumeration kBindingCode;

// The names that belong to an enumeration of platform/sysint.h which is the meaning of a query.

inline Enumeration NamesOf(sys_sim_status_e /*status*/) {
    return kSimStatus;
}

inline Enumeration NamesOf(sys_service_status_e /*status*/) {
    return kServiceStatus;
}

inline Enumeration NamesOf(sys_data_connection_status_e /*status*/) {
    return kDataConnectionStatus;
}

inline Enumeration NamesOf(sys_account_status_e /*status*/) {
    return kAccountStatus;
}

inline Enumeration NamesOf(sys_wan_5g_mode_e /*mode*/) {
    return kWanFiveGMode;
}

inline Enumeration NamesOf(sys_gps_status_e /*status*/) {
    return kGpsStatus;
}

/// The names of a meaning in SYSINT_QUERIES; none unless it is an enumeration.
template <typename Meaning>
Enumeration NamesOfMeaning() {
    if constexpr (std::is_enum_v<Meaning>) {
        return NamesOf(Meaning{});
    } else {
        return {};
    }
}

}  // namespace binding
