#include "components/status/status_texts.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <map>
#include <string>

#include "tests/unit/components/status/status_text_table.h"

namespace {

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

TEST(StatusTexts, DataConnectionStatus) {
    ExpectStatusTexts(GetDataConnectionStatusText, {{0, "Ready"},
                                                    {1, "Dormant"},
                                                    {2, "Connected"},
                                                    {4, "Connecting"},
                                                    {5, "Disconnecting"},
                                                    {6, "Activation in progress"},
                                                    {7, "Unactivated"}});
}

TEST(StatusTexts, FemtoCell) {
    ExpectStatusTexts(GetFemtoCellText, {{0, "0"}, {1, "1"}});
}

TEST(StatusTexts, Bool) {
    ExpectStatusTexts(GetBoolText, {{0, "false"}, {1, "true"}});
}

TEST(StatusTexts, BatteryDetection) {
    ExpectStatusTexts(GetBatteryDetectionText, {{0, "Invalid"}, {1, "Notpresent"}, {2, "Present"}});
}

TEST(StatusTexts, GpsStatus) {
    ExpectStatusTexts(GetGpsStatusText, {{0, "GpsOff"}, {1, "Searching"}, {2, "GotFix"}});
}

TEST(StatusTexts, SimStatus) {
    ExpectStatusTexts(GetSimStatusText, {{0, "Not Found"},
                                         {1, "SIM Locked"},
                                         {2, "SIM Restricted"},
                                         {3, "SIM Error"},
                                         {4, "SIM Error"},
                                         {5, "PUK Locked"},
                                         {6, "PIN Locked"},
                                         {7, "Ready"}});
}

TEST(StatusTexts, ChargingSource) {
    ExpectStatusTexts(
        GetChargingSourceText,
        {{0, "ChargingSourceNone"}, {1, "ChargingSourceAC"}, {2, "ChargingSourceUSB"}});
}

/// The result and text for a connection state; a state without a text leaves "untouched".
struct ConnectionState {
    int result = -1;
    std::string text = "untouched";

    bool operator==(const ConnectionState&) const = default;
    friend void PrintTo(const ConnectionState& state, std::ostream* out) {
        *out << state.result << " '" << state.text << "'";
    }
};

ConnectionState StateOf(std::int32_t service, std::int32_t dataConnection, std::int32_t account) {
    ConnectionState state;
    state.result = GetConnectionStateText(service, dataConnection, account, state.text);
    return state;
}

TEST(ConnectionStateText, RestrictedAccountComesBeforeTheService) {
    for (const std::int32_t service : {kMin, -1, 0, 1, 2, 3, kMax}) {
        EXPECT_EQ(StateOf(service, 2, 2), (ConnectionState{0, "Account restricted (PCO 2)"}));
        EXPECT_EQ(StateOf(service, 0, 2),
                  (ConnectionState{0, "Account restricted (PCO 2) Disconnected"}));
    }
}

TEST(ConnectionStateText, RestrictedAccountWritesNoTextForOtherDataConnectionsAndSucceeds) {
    for (const std::int32_t service : {-1, 0, 1, 2, 3}) {
        for (const std::int32_t dataConnection : {kMin, -1, 1, 3, 4, 5, 6, 7, 8, kMax}) {
            EXPECT_EQ(StateOf(service, dataConnection, 2), (ConnectionState{0, "untouched"}))
                << service << " " << dataConnection;
        }
    }
}

TEST(ConnectionStateText, AccountWithoutCreditOrNotActiveComesBeforeEverythingElse) {
    for (const std::int32_t service : {-1, 0, 1, 2, 3}) {
        for (const std::int32_t dataConnection : {-1, 0, 1, 2, 3, 4, 5, 6, 7, 8}) {
            EXPECT_EQ(StateOf(service, dataConnection, 3),
                      (ConnectionState{0, "Account out of credit (PCO 3)"}));
            EXPECT_EQ(StateOf(service, dataConnection, 5),
                      (ConnectionState{0, "Account not active (PCO 5)"}));
        }
    }
}

TEST(ConnectionStateText, OtherAccountsFollowTheService) {
    for (const std::int32_t account : {kMin, -1, 0, 1, 4, 6, kMax}) {
        EXPECT_EQ(StateOf(1, 2, account), (ConnectionState{0, "Searching"})) << account;
    }
}

TEST(ConnectionStateText, WithoutServiceTheDeviceInitializesOrHasNoService) {
    EXPECT_EQ(StateOf(0, 3, 0), (ConnectionState{0, "Initializing"}));
    for (const std::int32_t dataConnection : {kMin, -1, 0, 1, 2, 4, 5, 6, 7, 8, kMax}) {
        EXPECT_EQ(StateOf(0, dataConnection, 0), (ConnectionState{0, "No Service"}))
            << dataConnection;
    }
}

TEST(ConnectionStateText, SearchingDoesNotDependOnTheDataConnection) {
    for (const std::int32_t dataConnection : {-1, 0, 1, 2, 3, 4, 5, 6, 7, 8}) {
        EXPECT_EQ(StateOf(1, dataConnection, 0), (ConnectionState{0, "Searching"}))
            << dataConnection;
    }
}

TEST(ConnectionStateText, WithServiceItIsTheDataConnectionStatus) {
    const std::map<std::int32_t, std::string> texts = {
        {0, "Ready"},      {1, "Dormant"},       {2, "Connected"},
        {4, "Connecting"}, {5, "Disconnecting"}, {6, "Activation in progress"},
        {7, "Unactivated"}};
    for (const auto& [dataConnection, text] : texts) {
        EXPECT_EQ(StateOf(2, dataConnection, 0), (ConnectionState{0, text})) << dataConnection;
    }
}

TEST(ConnectionStateText, WithServiceAndDataConnectionWithoutTextItWritesNothingAndSucceeds) {
    for (const std::int32_t dataConnection : {kMin, -1, 3, 8, kMax}) {
        EXPECT_EQ(StateOf(2, dataConnection, 0), (ConnectionState{0, "untouched"}))
            << dataConnection;
    }
}

TEST(ConnectionStateText, UnknownServiceHasNoText) {
    for (const std::int32_t service : {kMin, -1, 3, 4, kMax}) {
        for (const std::int32_t dataConnection : {0, 2, 3}) {
            EXPECT_EQ(StateOf(service, dataConnection, 0), (ConnectionState{200, "untouched"}))
                << service << " " << dataConnection;
        }
    }
}

}  // namespace
