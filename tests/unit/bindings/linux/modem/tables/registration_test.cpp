#include "bindings/linux/modem/tables/registration.h"

#include <gtest/gtest.h>

namespace {

using binding::BearerFacts;
using binding::DataConnectionStatusOf;
using binding::RadioEnabledOf;
using binding::RoamingOf;
using binding::ServiceStatusOf;

constexpr std::int64_t kFailed = -1;
constexpr std::int64_t kDisabled = 3;
constexpr std::int64_t kEnabled = 6;
constexpr std::int64_t kSearching = 7;
constexpr std::int64_t kRegistered = 8;
constexpr std::int64_t kDisconnecting = 9;
constexpr std::int64_t kConnecting = 10;
constexpr std::int64_t kConnected = 11;

TEST(ServiceStatus, IsThatOfTheRegistration) {
    const struct {
        std::int64_t registration;
        sys_service_status_e status;
    } rows[] = {
        {0, SYS_SERVICE_NONE},      {1, SYS_SERVICE_AVAILABLE},  {2, SYS_SERVICE_SEARCHING},
        {3, SYS_SERVICE_NONE},      {4, SYS_SERVICE_NONE},       {5, SYS_SERVICE_AVAILABLE},
        {6, SYS_SERVICE_AVAILABLE}, {7, SYS_SERVICE_AVAILABLE},  {8, SYS_SERVICE_NONE},
        {9, SYS_SERVICE_AVAILABLE}, {10, SYS_SERVICE_AVAILABLE}, {11, SYS_SERVICE_NONE},
        {12, SYS_SERVICE_NONE},     {-1, SYS_SERVICE_NONE},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(ServiceStatusOf(kEnabled, row.registration), row.status) << row.registration;
    }
}

TEST(ServiceStatus, IsThatOfTheModemWhereNoRegistrationIsTold) {
    EXPECT_EQ(ServiceStatusOf(kSearching, std::nullopt), SYS_SERVICE_SEARCHING);
    EXPECT_EQ(ServiceStatusOf(kRegistered, std::nullopt), SYS_SERVICE_AVAILABLE);
    EXPECT_EQ(ServiceStatusOf(kConnected, 4), SYS_SERVICE_AVAILABLE);
    EXPECT_EQ(ServiceStatusOf(kSearching, 0), SYS_SERVICE_SEARCHING);
    EXPECT_EQ(ServiceStatusOf(std::nullopt, std::nullopt), SYS_SERVICE_NONE);
}

TEST(ServiceStatus, IsNoneWhileTheModemIsOffWhateverItWasRegisteredWith) {
    EXPECT_EQ(ServiceStatusOf(kDisabled, 1), SYS_SERVICE_NONE);
    EXPECT_EQ(ServiceStatusOf(kFailed, 1), SYS_SERVICE_NONE);
}

TEST(ServiceStatus, ADeniedModemDoesNotSearch) {
    EXPECT_EQ(ServiceStatusOf(kSearching, 3), SYS_SERVICE_NONE);
}

TEST(Roaming, IsDomesticInTheCountryOfTheSim) {
    EXPECT_EQ(RoamingOf(5, "26202", "262011234567890"), SYS_ROAMING_DOMESTIC);
    EXPECT_EQ(RoamingOf(7, "26202", "262011234567890"), SYS_ROAMING_DOMESTIC);
    EXPECT_EQ(RoamingOf(10, "26202", "262011234567890"), SYS_ROAMING_DOMESTIC);
    EXPECT_EQ(RoamingOf(5, "20801", "262011234567890"), SYS_ROAMING_INTERNATIONAL);
}

TEST(Roaming, SomeCountriesHaveSeveralCodes) {
    EXPECT_EQ(RoamingOf(5, "310260", "311480123456789"), SYS_ROAMING_DOMESTIC);
    EXPECT_EQ(RoamingOf(5, "23410", "235911234567890"), SYS_ROAMING_DOMESTIC);
    EXPECT_EQ(RoamingOf(5, "40410", "405801234567890"), SYS_ROAMING_DOMESTIC);
    EXPECT_EQ(RoamingOf(5, "44010", "441001234567890"), SYS_ROAMING_DOMESTIC);
    EXPECT_EQ(RoamingOf(5, "46000", "461031234567890"), SYS_ROAMING_DOMESTIC);
    // 309 and 317 belong to no other country's codes, and not to these.
    EXPECT_EQ(RoamingOf(5, "310260", "317001234567890"), SYS_ROAMING_INTERNATIONAL);
    EXPECT_EQ(RoamingOf(5, "302720", "310260123456789"), SYS_ROAMING_INTERNATIONAL);
}

TEST(Roaming, IsInternationalWhileACountryIsNotKnown) {
    EXPECT_EQ(RoamingOf(5, "", "262011234567890"), SYS_ROAMING_INTERNATIONAL);
    EXPECT_EQ(RoamingOf(5, "26202", ""), SYS_ROAMING_INTERNATIONAL);
    EXPECT_EQ(RoamingOf(5, "26", "26"), SYS_ROAMING_INTERNATIONAL);
    EXPECT_EQ(RoamingOf(5, "abc", "abc"), SYS_ROAMING_INTERNATIONAL);
}

TEST(Roaming, IsNoneAtHomeAndWithoutService) {
    for (const std::int64_t registration : {0, 1, 2, 3, 4, 6, 8, 9, 11, 99}) {
        EXPECT_EQ(RoamingOf(registration, "20801", "262011234567890"), SYS_ROAMING_NONE)
            << registration;
    }
}

TEST(DataConnection, FollowsTheModemWhereNoBearerTells) {
    const struct {
        std::int64_t state;
        sys_data_connection_status_e status;
    } rows[] = {
        {-1, SYS_DATA_CONNECTION_READY},        {0, SYS_DATA_CONNECTION_READY},
        {1, SYS_DATA_CONNECTION_INITIALIZING},  {2, SYS_DATA_CONNECTION_READY},
        {3, SYS_DATA_CONNECTION_READY},         {4, SYS_DATA_CONNECTION_READY},
        {5, SYS_DATA_CONNECTION_INITIALIZING},  {6, SYS_DATA_CONNECTION_READY},
        {7, SYS_DATA_CONNECTION_READY},         {8, SYS_DATA_CONNECTION_READY},
        {9, SYS_DATA_CONNECTION_DISCONNECTING}, {10, SYS_DATA_CONNECTION_CONNECTING},
        {11, SYS_DATA_CONNECTION_CONNECTED},    {12, SYS_DATA_CONNECTION_READY},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(DataConnectionStatusOf(row.state, BearerFacts{}), row.status) << row.state;
    }
    EXPECT_EQ(DataConnectionStatusOf(std::nullopt, BearerFacts{}), SYS_DATA_CONNECTION_READY);
}

TEST(DataConnection, BearersTellMoreExactlyThanTheModem) {
    const BearerFacts connected{true, true, false};
    const BearerFacts none{true, false, false};
    EXPECT_EQ(DataConnectionStatusOf(kRegistered, connected), SYS_DATA_CONNECTION_CONNECTED);
    EXPECT_EQ(DataConnectionStatusOf(kConnecting, connected), SYS_DATA_CONNECTION_CONNECTED);
    EXPECT_EQ(DataConnectionStatusOf(kConnected, none), SYS_DATA_CONNECTION_READY);
    EXPECT_EQ(DataConnectionStatusOf(kConnecting, none), SYS_DATA_CONNECTION_CONNECTING);
    EXPECT_EQ(DataConnectionStatusOf(kDisconnecting, connected), SYS_DATA_CONNECTION_DISCONNECTING);
}

TEST(DataConnection, ASuspendedBearerIsDormant) {
    EXPECT_EQ(DataConnectionStatusOf(kConnected, BearerFacts{true, true, true}),
              SYS_DATA_CONNECTION_DORMANT);
}

TEST(Radio, IsOffInLowPower) {
    EXPECT_EQ(RadioEnabledOf(kRegistered, 1), 0);
    EXPECT_EQ(RadioEnabledOf(kDisabled, 2), 0);
    EXPECT_EQ(RadioEnabledOf(kDisabled, 3), 1);
}

TEST(Radio, IsOnWhileTheModemIsEnabled) {
    EXPECT_EQ(RadioEnabledOf(kEnabled, std::nullopt), 1);
    EXPECT_EQ(RadioEnabledOf(kRegistered, 0), 1);
}

TEST(Radio, IsNotKnownWhereNothingTells) {
    EXPECT_EQ(RadioEnabledOf(kDisabled, std::nullopt), std::nullopt);
    EXPECT_EQ(RadioEnabledOf(kDisabled, 0), std::nullopt);
    EXPECT_EQ(RadioEnabledOf(std::nullopt, std::nullopt), std::nullopt);
}

}  // namespace
