#include "bindings/linux/modem/tables/access_technology.h"

namespace binding {

namespace {

constexpr std::int64_t Bit(int number) {
    return std::int64_t{1} << number;
}

// MMModemAccessTechnology.
constexpr std::int64_t kLte = Bit(14);
constexpr std::int64_t k5gNr = Bit(15);
constexpr std::int64_t kLteCatM = Bit(16);
constexpr std::int64_t kLteNbIot = Bit(17);
constexpr std::int64_t kAnyTechnology = 0xFFFFFFFF;

struct Row {
    std::int64_t bit;
    sys_technology_e technology;
};

/// The first row that fits counts. The SDK has no value for GSM without packet data, and none for
/// HSDPA together with HSUPA; a cell with HSUPA always has HSDPA, too.
constexpr Row kTechnologies[] = {
    {k5gNr, SYS_TECHNOLOGY_5G},           {kLte, SYS_TECHNOLOGY_LTE},
    {kLteCatM, SYS_TECHNOLOGY_LTE},       {kLteNbIot, SYS_TECHNOLOGY_LTE},
    {Bit(9), SYS_TECHNOLOGY_HSPA_PLUS},   {Bit(8), SYS_TECHNOLOGY_HSUPA},  // HSPA
    {Bit(7), SYS_TECHNOLOGY_HSUPA},       {Bit(6), SYS_TECHNOLOGY_HSDPA},
    {Bit(5), SYS_TECHNOLOGY_UMTS},        {Bit(13), SYS_TECHNOLOGY_EVDO_REVB},
    {Bit(12), SYS_TECHNOLOGY_EVDO_REVA},  {Bit(11), SYS_TECHNOLOGY_EVDO_REV0},
    {Bit(10), SYS_TECHNOLOGY_CDMA_1XRTT}, {Bit(4), SYS_TECHNOLOGY_EDGE},
    {Bit(3), SYS_TECHNOLOGY_GPRS},        {Bit(2), SYS_TECHNOLOGY_GPRS},  // GSM compact
    {Bit(1), SYS_TECHNOLOGY_GPRS},                                        // GSM
};

// MMModemMode.
constexpr std::int64_t kMode2g = Bit(1);
constexpr std::int64_t kMode3g = Bit(2);
constexpr std::int64_t kMode4g = Bit(3);
constexpr std::int64_t kMode5g = Bit(4);

// MMModemCapability.
constexpr std::int64_t kCdmaEvdo = Bit(1);
constexpr std::int64_t kGsmUmts = Bit(2);

// The SDK's bits. Their names follow from the texts that the product shows for their sums: 1 to 3
// are "GSM/UMTS", 4, 8, 16 and 28 are "LTE/CDMA", and everything else is "global".
constexpr int kEnabledGsm = 1;
constexpr int kEnabledUmts = 2;
constexpr int kEnabledCdma = 4;
constexpr int kEnabledEvdo = 8;
constexpr int kEnabledLte = 16;
constexpr int kEnabled5g = 32;

}  // namespace

Technology TechnologyOf(std::int64_t bits) {
    // "Any" is what a modem may be allowed to use. None is connected by all technologies at once.
    if (bits == kAnyTechnology) {
        return {};
    }
    for (const Row& row : kTechnologies) {
        if ((bits & row.bit) == 0) {
            continue;
        }
        Technology result{row.technology, SYS_WAN_5G_NONE};
        if (row.bit == k5gNr) {
            result.fiveGMode =
                (bits & kLte) != 0 ? SYS_WAN_5G_NON_STANDALONE : SYS_WAN_5G_STANDALONE;
        }
        return result;
    }
    return {};
}

int EnabledTechnologies(std::int64_t allowedModes, std::int64_t capabilities) {
    const bool cdma = (capabilities & kCdmaEvdo) != 0;
    // A modem that does not tell what it can do is taken for one of the widespread kind.
    const bool gsm = !cdma || (capabilities & kGsmUmts) != 0;
    int enabled = 0;
    if ((allowedModes & kMode2g) != 0) {
        enabled |= (gsm ? kEnabledGsm : 0) | (cdma ? kEnabledCdma : 0);
    }
    if ((allowedModes & kMode3g) != 0) {
        enabled |= (gsm ? kEnabledUmts : 0) | (cdma ? kEnabledEvdo : 0);
    }
    if ((allowedModes & kMode4g) != 0) {
        enabled |= kEnabledLte;
    }
    if ((allowedModes & kMode5g) != 0) {
        enabled |= kEnabled5g;
    }
    return enabled;
}

}  // namespace binding
