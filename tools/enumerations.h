// Names for the values of the platform's enumerations. A name is that of the enumerator in
// platform/, in lower case and without the prefix that all enumerators of its enumeration have.
#pragma once

#include <cstdint>
#include <span>

struct EnumerationName {
    std::int64_t value;
    const char* name;
};

using Enumeration = std::span<const EnumerationName>;

/// Name of @p value; null when it has none.
const char* NameOf(std::int64_t value, Enumeration names);

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
