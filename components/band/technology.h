#pragma once

#include "platform/sysint.h"

/// Whether @p technology, a sys_technology_e, is one of the 2G and 3G technologies.
constexpr bool IsSecondOrThirdGeneration(int technology) {
    return technology >= SYS_TECHNOLOGY_GPRS && technology <= SYS_TECHNOLOGY_EVDO_EHRPD &&
           technology != SYS_TECHNOLOGY_LTE;
}

/// Whether @p technology, a sys_technology_e, is LTE, with or without carrier aggregation.
constexpr bool IsLte(int technology) {
    return technology == SYS_TECHNOLOGY_LTE || technology == SYS_TECHNOLOGY_LTE_PLUS;
}
