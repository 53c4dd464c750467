// Technologies: how ModemManager counts them and how the SDK does.
#pragma once

#include <cstdint>

#include "platform/sysint.h"

namespace binding {

struct Technology {
    sys_technology_e technology = SYS_TECHNOLOGY_NONE;
    sys_wan_5g_mode_e fiveGMode = SYS_WAN_5G_NONE;

    bool operator==(const Technology&) const = default;
};

/// The best technology of a set of MMModemAccessTechnology bits. LTE and 5G together are 5G
/// non-standalone: the modem is attached to an LTE cell and has NR cells beside it.
Technology TechnologyOf(std::int64_t bits);

/// What sys_getEnabledRadioTechnologies answers for the MMModemMode bits @p allowedModes of a modem
/// with the MMModemCapability bits @p capabilities. Bits: 1 GSM, 2 UMTS, 4 CDMA 1x, 8 EV-DO, 16
/// LTE, 32 5G.
int EnabledTechnologies(std::int64_t allowedModes, std::int64_t capabilities);

}  // namespace binding
