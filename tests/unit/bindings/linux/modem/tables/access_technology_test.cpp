#include "bindings/linux/modem/tables/access_technology.h"

#include <gtest/gtest.h>

namespace {

using binding::EnabledTechnologies;
using binding::Technology;
using binding::TechnologyOf;

constexpr std::int64_t Bit(int number) {
    return std::int64_t{1} << number;
}

TEST(AccessTechnology, EachBitHasItsTechnology) {
    const struct {
        int bit;
        sys_technology_e technology;
    } rows[] = {
        {0, SYS_TECHNOLOGY_NONE},        {1, SYS_TECHNOLOGY_GPRS},
        {2, SYS_TECHNOLOGY_GPRS},        {3, SYS_TECHNOLOGY_GPRS},
        {4, SYS_TECHNOLOGY_EDGE},        {5, SYS_TECHNOLOGY_UMTS},
        {6, SYS_TECHNOLOGY_HSDPA},       {7, SYS_TECHNOLOGY_HSUPA},
        {8, SYS_TECHNOLOGY_HSUPA},       {9, SYS_TECHNOLOGY_HSPA_PLUS},
        {10, SYS_TECHNOLOGY_CDMA_1XRTT}, {11, SYS_TECHNOLOGY_EVDO_REV0},
        {12, SYS_TECHNOLOGY_EVDO_REVA},  {13, SYS_TECHNOLOGY_EVDO_REVB},
        {14, SYS_TECHNOLOGY_LTE},        {15, SYS_TECHNOLOGY_5G},
        {16, SYS_TECHNOLOGY_LTE},        {17, SYS_TECHNOLOGY_LTE},
        {18, SYS_TECHNOLOGY_NONE},       {31, SYS_TECHNOLOGY_NONE},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(TechnologyOf(Bit(row.bit)).technology, row.technology) << row.bit;
    }
}

TEST(AccessTechnology, OfSeveralTheBestOneCounts) {
    EXPECT_EQ(TechnologyOf(Bit(3) | Bit(4)).technology, SYS_TECHNOLOGY_EDGE);
    EXPECT_EQ(TechnologyOf(Bit(5) | Bit(8) | Bit(9)).technology, SYS_TECHNOLOGY_HSPA_PLUS);
    EXPECT_EQ(TechnologyOf(Bit(10) | Bit(11)).technology, SYS_TECHNOLOGY_EVDO_REV0);
    EXPECT_EQ(TechnologyOf(Bit(13) | Bit(14)).technology, SYS_TECHNOLOGY_LTE);
}

TEST(AccessTechnology, FiveGBesideLteIsNonStandalone) {
    const Technology alone{SYS_TECHNOLOGY_5G, SYS_WAN_5G_STANDALONE};
    const Technology besideLte{SYS_TECHNOLOGY_5G, SYS_WAN_5G_NON_STANDALONE};
    const Technology lte{SYS_TECHNOLOGY_LTE, SYS_WAN_5G_NONE};
    EXPECT_EQ(TechnologyOf(Bit(15)), alone);
    EXPECT_EQ(TechnologyOf(Bit(14) | Bit(15)), besideLte);
    EXPECT_EQ(TechnologyOf(Bit(14)), lte);
}

TEST(AccessTechnology, WhatNoModemUsesAtOnceIsNone) {
    EXPECT_EQ(TechnologyOf(0), Technology{});
    EXPECT_EQ(TechnologyOf(0xFFFFFFFF), Technology{});
}

constexpr std::int64_t k2g = 2;
constexpr std::int64_t k3g = 4;
constexpr std::int64_t k4g = 8;
constexpr std::int64_t k5g = 16;
constexpr std::int64_t kGsmUmts = 4;
constexpr std::int64_t kCdmaEvdo = 2;

TEST(EnabledTechnologies, GsmModemsHaveGsmAndUmts) {
    EXPECT_EQ(EnabledTechnologies(k2g, kGsmUmts), 1);
    EXPECT_EQ(EnabledTechnologies(k3g, kGsmUmts), 2);
    EXPECT_EQ(EnabledTechnologies(k2g | k3g, kGsmUmts), 3);
    EXPECT_EQ(EnabledTechnologies(k4g, kGsmUmts), 16);
    EXPECT_EQ(EnabledTechnologies(k5g, kGsmUmts), 32);
    EXPECT_EQ(EnabledTechnologies(k2g | k3g | k4g | k5g, kGsmUmts), 51);
}

TEST(EnabledTechnologies, CdmaModemsHaveCdmaAndEvdo) {
    EXPECT_EQ(EnabledTechnologies(k2g, kCdmaEvdo), 4);
    EXPECT_EQ(EnabledTechnologies(k3g, kCdmaEvdo), 8);
    EXPECT_EQ(EnabledTechnologies(k2g | k3g | k4g, kCdmaEvdo), 28);
}

TEST(EnabledTechnologies, AModemForBothKindsOfNetworksHasAllFour) {
    EXPECT_EQ(EnabledTechnologies(k2g | k3g, kGsmUmts | kCdmaEvdo), 15);
}

TEST(EnabledTechnologies, CapabilitiesThatAreNotToldAreThoseOfMostModems) {
    EXPECT_EQ(EnabledTechnologies(k2g | k3g, 0), 3);
}

TEST(EnabledTechnologies, NoModeIsNone) {
    EXPECT_EQ(EnabledTechnologies(0, kGsmUmts), 0);
    EXPECT_EQ(EnabledTechnologies(1, kGsmUmts), 0);  // circuit-switched only
}

TEST(EnabledTechnologies, AnyModeIsAllOfTheModem) {
    EXPECT_EQ(EnabledTechnologies(0xFFFFFFFF, kGsmUmts), 51);
}

}  // namespace
