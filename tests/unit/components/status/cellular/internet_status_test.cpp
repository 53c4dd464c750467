// What the internet group writes.
#include "tests/unit/components/status/cellular/internet_status_test.h"

#include <limits>
#include <map>
#include <set>

using recording::CallCount;
using recording::Given;

namespace {

using InternetStatus = InternetStatusTest;

constexpr int kMin = std::numeric_limits<int>::min();
constexpr int kMax = std::numeric_limits<int>::max();
constexpr std::uint64_t kMaxCounter = std::numeric_limits<std::uint64_t>::max();

TEST_F(InternetStatus, OneSim) {
    EXPECT_EQ(Json(),
              R"({"statusBarAirplaneMode":"AirplaneModeOff","statusBarBand":"-",)"
              R"("statusBarBandwidth":"-","statusBarBytesReceived":"1030",)"
              R"("statusBarBytesTotal":"1234","statusBarBytesTransmitted":"204",)"
              R"("statusBarConnectionDuration":"5421","statusBarConnectionState":"Connected",)"
              R"("statusBarFemtoCellStatus":"0","statusBarNetwork":"Orvane",)"
              R"("statusBarNetworkID":"311480","statusBarPCI":"211","statusBarSNR":"17",)"
              R"("statusBarSignalBars":"4","statusBarTechnology":"LTE",)"
              R"("statusBarTechnologyText":"","statusBarTrafficStatus":"UplinkDownlink"})");
}

TEST_F(InternetStatus, TwoSimsWithTheFirstInUse) {
    Construct({"sys_getMultiSimEnabled"});
    Activate(1);
    EXPECT_EQ(Json(), R"({"statusBarAirplaneMode":"AirplaneModeOff","statusBarBand":"-",)"
                      R"("statusBarBandwidth":"-","statusBarBytesReceived":"1030",)"
                      R"("statusBarBytesTotal":"1234","statusBarBytesTransmitted":"204",)"
                      R"("statusBarConnectionDuration":"5421","statusBarFemtoCellStatus":"0",)"
                      R"("statusBarNetworkID":"311480","statusBarPCI":"211","statusBarSNR":"17",)"
                      R"("statusBarSignalBars":"4","statusBarSim2SignalBars":"",)"
                      R"("statusBarSim2Technology":"","statusBarSim2TechnologyText":"",)"
                      R"("statusBarTechnology":"LTE","statusBarTechnologyText":"",)"
                      R"("statusBarTrafficStatus":"UplinkDownlink"})");
}

TEST_F(InternetStatus, TwoSimsWithTheSecondInUse) {
    Construct({"sys_getMultiSimEnabled"});
    Activate(2);
    EXPECT_EQ(Json(), R"({"statusBarAirplaneMode":"AirplaneModeOff","statusBarBand":"-",)"
                      R"("statusBarBandwidth":"-","statusBarBytesReceived":"1030",)"
                      R"("statusBarBytesTotal":"1234","statusBarBytesTransmitted":"204",)"
                      R"("statusBarConnectionDuration":"5421","statusBarFemtoCellStatus":"0",)"
                      R"("statusBarNetworkID":"311480","statusBarPCI":"211","statusBarSNR":"17",)"
                      R"("statusBarSignalBars":"","statusBarSim2SignalBars":"4",)"
                      R"("statusBarSim2Technology":"LTE","statusBarSim2TechnologyText":"",)"
                      R"("statusBarTechnology":"","statusBarTechnologyText":"",)"
                      R"("statusBarTrafficStatus":"UplinkDownlink"})");
}

TEST_F(InternetStatus, EverySlotButTheSecondIsTheFirst) {
    for (const int slot : {kMin, -2, 0, 1, 3, kMax}) {
        Construct({"sys_getMultiSimEnabled"});
        Activate(slot);
        EXPECT_EQ(ValueOf("statusBarTechnology"), "LTE") << slot;
        EXPECT_EQ(Value("statusBarSim2Technology"), "") << slot;
        EXPECT_EQ(Value("statusBarSignalBars"), "4") << slot;
        EXPECT_EQ(Value("statusBarSim2SignalBars"), "") << slot;
    }
}

TEST_F(InternetStatus, WithoutDualSimSupportTheSlotInUseDoesNotMatter) {
    Activate(2);
    EXPECT_EQ(ValueOf("statusBarTechnology"), "LTE");
    EXPECT_EQ(Value("statusBarSignalBars"), "4");
    EXPECT_EQ(Value("statusBarSim2Technology"), "(absent)");
    EXPECT_EQ(Value("statusBarSim2TechnologyText"), "(absent)");
    EXPECT_EQ(Value("statusBarSim2SignalBars"), "(absent)");
}

TEST_F(InternetStatus, AnySourceThatFailsSuppressesEveryKeyWhateverTheCallsWrote) {
    for (const char* call : {"sys_getCellularServiceStats", "sys_getCellularDataConnectionStats",
                             "sys_getRadioEnabled", "sys_getCellularServiceStatus",
                             "sys_getCellularDataConnectionStatus"}) {
        Construct({"sys_getPCOCarrierEnabled"});
        Configure({Configuration("ShowRoamingIndicator", "1"),
                   Configuration("ShowNonOrvaneTechnologies", "0")});
        accountStatus = SYS_ACCOUNT_OUT_OF_CREDIT;
        Given(call).Returns(9);
        EXPECT_EQ(Json(), "{}") << call;
        EXPECT_EQ(CallCount("sys_getSubscriberInfo"), 0U) << call;
        EXPECT_EQ(CallCount("sys_getEnabledRadioTechnologies"), 0U) << call;
    }
}

TEST_F(InternetStatus, ValuesThatAreNotWrittenKeepTheirPresets) {
    for (const char* call : {"sys_getCellularServiceStats", "sys_getCellularDataConnectionStats",
                             "sys_getRadioEnabled", "sys_getCellularServiceStatus",
                             "sys_getCellularDataConnectionStatus"}) {
        Given(call).Returns(SYS_SUCCESS);
    }
    EXPECT_EQ(Json(),
              R"({"statusBarAirplaneMode":"AirplaneModeOff","statusBarBand":"-",)"
              R"("statusBarBandwidth":"-","statusBarBytesReceived":"0",)"
              R"("statusBarBytesTotal":"0","statusBarBytesTransmitted":"0",)"
              R"("statusBarConnectionDuration":"0","statusBarConnectionState":"No Service",)"
              R"("statusBarFemtoCellStatus":"0","statusBarNetwork":"","statusBarNetworkID":"",)"
              R"("statusBarPCI":"0","statusBarSNR":"0","statusBarSignalBars":"0",)"
              R"("statusBarTechnology":"None","statusBarTechnologyText":"",)"
              R"("statusBarTrafficStatus":"None"})");
}

TEST_F(InternetStatus, DataConnectionThatIsNotWrittenIsReady) {
    Given("sys_getCellularDataConnectionStatus").Returns(SYS_SUCCESS);
    EXPECT_EQ(ValueOf("statusBarConnectionState"), "Ready");
}

TEST_F(InternetStatus, RestrictedAccountWithADormantConnectionHasAnEmptyState) {
    Construct({"sys_getPCOCarrierEnabled"});
    accountStatus = SYS_ACCOUNT_RESTRICTED;
    dataConnectionStatus = SYS_DATA_CONNECTION_DORMANT;
    EXPECT_EQ(ValueOf("statusBarConnectionState"), "");
}

TEST_F(InternetStatus, ValuesWithoutATextAreEmptyTexts) {
    Configure("ShowRoamingIndicator", "1");
    service.technology = 18;
    service.roaming = 4;
    service.femtoCell = 2;
    connection.trafficStatus = 4;
    radioEnabled = 2;
    serviceStatus = 3;
    for (const char* key :
         {"statusBarTechnology", "statusBarRoaming", "statusBarFemtoCellStatus",
          "statusBarTrafficStatus", "statusBarAirplaneMode", "statusBarConnectionState"}) {
        recording::Reset();
        EXPECT_EQ(ValueOf(key), "") << key;
    }
}

TEST_F(InternetStatus, FiveGFollowsItsTypeAndHasAnSnr) {
    service.technology = SYS_TECHNOLOGY_5G;
    const std::map<int, std::string> texts = {{0, ""}, {1, "5G UWB"}, {2, "5G"}, {3, ""}};
    for (const auto& [type, text] : texts) {
        recording::Reset();
        service.fiveGType = type;
        EXPECT_EQ(ValueOf("statusBarTechnology"), text) << type;
        EXPECT_EQ(Value("statusBarSNR"), "17") << type;
        EXPECT_EQ(Value("statusBarSINR"), "(absent)") << type;
    }
}

TEST_F(InternetStatus, SecondAndThirdGenerationHaveASinrAndAllOthersAnSnr) {
    const std::set<int> sinr = {2, 3, 4, 5, 6, 7, 8, 9, 10, 12, 13, 14};
    for (int technology = -2; technology < 25; ++technology) {
        recording::Reset();
        service.technology = technology;
        EXPECT_EQ(ValueOf("statusBarSINR"), sinr.contains(technology) ? "18" : "(absent)")
            << technology;
        EXPECT_EQ(Value("statusBarSNR"), sinr.contains(technology) ? "(absent)" : "17")
            << technology;
    }
}

TEST_F(InternetStatus, RadioNumbersAreSigned) {
    service.technology = SYS_TECHNOLOGY_HSDPA;
    service.signalBars = -1;
    service.sinr = kMin;
    service.pci = kMax;
    EXPECT_EQ(ValueOf("statusBarSINR"), "-2147483648");
    EXPECT_EQ(Value("statusBarPCI"), "2147483647");
    EXPECT_EQ(Value("statusBarSignalBars"), "-1");
    recording::Reset();
    service.technology = SYS_TECHNOLOGY_LTE;
    service.snr = -20;
    EXPECT_EQ(ValueOf("statusBarSNR"), "-20");
}

TEST_F(InternetStatus, NetworkIdentifierIsTheFirstWordOfItsField) {
    const std::map<std::string, std::string> words = {
        {"311 480", "311"},    {"   ", ""}, {"", ""}, {" \t\n\v\f\r311\t480", "311"},
        {"311480 ", "311480"},
    };
    for (const auto& [field, word] : words) {
        recording::Reset();
        SetText(service.networkId, field);
        EXPECT_EQ(ValueOf("statusBarNetworkID"), word) << "'" << field << "'";
    }
}

TEST_F(InternetStatus, TextsMayFillTheirFields) {
    SetText(service.networkName, std::string(100, 'n'));
    SetText(service.networkId, std::string(100, '3'));
    service.femtoCell = 0x31313131;
    EXPECT_EQ(ValueOf("statusBarNetwork"), std::string(65, 'n'));
    EXPECT_EQ(Value("statusBarNetworkID"), std::string(99, '3'));
}

TEST_F(InternetStatus, NetworkNameIsNotAWord) {
    SetText(service.networkName, " Orvane  Mobil ");
    EXPECT_EQ(ValueOf("statusBarNetwork"), " Orvane  Mobil ");
}

TEST_F(InternetStatus, CountersWrapAndArePrintedWhole) {
    connection.bytesReceived1 = kMaxCounter;
    connection.bytesReceived2 = 3;
    connection.bytesTransmitted1 = kMaxCounter - 1;
    connection.bytesTransmitted2 = 1;
    connection.duration = kMaxCounter;
    EXPECT_EQ(ValueOf("statusBarBytesReceived"), "2");
    EXPECT_EQ(Value("statusBarBytesTransmitted"), "18446744073709551615");
    EXPECT_EQ(Value("statusBarBytesTotal"), "1");
    EXPECT_EQ(Value("statusBarConnectionDuration"), "18446744073709551615");
}

TEST_F(InternetStatus, AccountOutOfCreditShowsTheStateOfTheConnection) {
    Construct({"sys_getPCOCarrierEnabled"});
    accountStatus = SYS_ACCOUNT_OUT_OF_CREDIT;
    EXPECT_EQ(ValueOf("statusBarConnectionState"), "Account out of credit (PCO 3)");
    EXPECT_EQ(Value("pcoInitiatedConnectionStatus"), "Connected");
}

TEST_F(InternetStatus, OnlyAnAccountOutOfCreditOrNotActiveShowsTheStateOfTheConnection) {
    Construct({"sys_getPCOCarrierEnabled"});
    for (int account = -1; account < 8; ++account) {
        recording::Reset();
        accountStatus = account;
        EXPECT_EQ(ValueOf("pcoInitiatedConnectionStatus"),
                  account == 3 || account == 5 ? "Connected" : "(absent)")
            << account;
    }
    recording::Reset();
    accountStatus = SYS_ACCOUNT_NOT_ACTIVE;
    dataConnectionStatus = SYS_DATA_CONNECTION_INITIALIZING;
    EXPECT_EQ(ValueOf("pcoInitiatedConnectionStatus"), "");
    EXPECT_EQ(Value("statusBarConnectionState"), "Account not active (PCO 5)");
}

TEST_F(InternetStatus, DualSimShowsTheStateOfTheConnectionToo) {
    Construct({"sys_getPCOCarrierEnabled", "sys_getMultiSimEnabled"});
    accountStatus = SYS_ACCOUNT_OUT_OF_CREDIT;
    EXPECT_EQ(ValueOf("pcoInitiatedConnectionStatus"), "Connected");
    EXPECT_EQ(Value("statusBarConnectionState"), "(absent)");
}

TEST_F(InternetStatus, WithoutPcoTheAccountIsNotAskedAndTheServiceDecides) {
    accountStatus = SYS_ACCOUNT_OUT_OF_CREDIT;
    EXPECT_EQ(ValueOf("statusBarConnectionState"), "Connected");
    EXPECT_EQ(Value("pcoInitiatedConnectionStatus"), "(absent)");
    EXPECT_EQ(CallCount("sys_getCellularDataAccountStatus"), 0U);
}

TEST_F(InternetStatus, AccountThatCannotBeReadIsInOrderUnlessTheCallWroteAValue) {
    Construct({"sys_getPCOCarrierEnabled"});
    Given("sys_getCellularDataAccountStatus").Returns(9);
    EXPECT_EQ(ValueOf("statusBarConnectionState"), "Connected");
    recording::Reset();
    Given("sys_getCellularDataAccountStatus").Returns(9).Writes<int>(SYS_ACCOUNT_NOT_ACTIVE);
    EXPECT_EQ(ValueOf("statusBarConnectionState"), "Account not active (PCO 5)");
}

TEST_F(InternetStatus, BandsAreThoseOfTheBandTexts) {
    translations::Give("webui", "webui_app_megahertz_text", "MHz");
    service.technology = SYS_TECHNOLOGY_5G;
    simStatus.reset();
    Given("sys_getSIMStatus").Writes<int>(SYS_SIM_READY);
    Given("sys_getCellular5GMode").Writes(SYS_WAN_5G_NON_STANDALONE);
    Given("sys_getCellular5GBand").Writes(77).Writes(0);
    Given("sys_getCellularBand").Writes(66);
    Given("sys_getCABandWidth").Writes(20);
    Given("sys_get5GBandWidth").Writes(100);
    EXPECT_EQ(ValueOf("statusBarBand"), "B66, n77");
    EXPECT_EQ(Value("statusBarBandwidth"), "20 MHz, 100 MHz");
}

TEST_F(InternetStatus, BandsThatCannotBeReadAreEmptyTexts) {
    simStatus.reset();
    Given("sys_getSIMStatus").Returns(9);
    EXPECT_EQ(ValueOf("statusBarBand"), "");
    EXPECT_EQ(Value("statusBarBandwidth"), "");
}

TEST_F(InternetStatus, RoamingIsShownWhereTheConfigurationSaysSo) {
    service.roaming = SYS_ROAMING_INTERNATIONAL;
    const std::map<std::string, std::string> shown = {{"1", "International"},
                                                      {"-1", "International"},
                                                      {"0", "(absent)"},
                                                      {"yes", "(absent)"},
                                                      {"", "(absent)"}};
    for (const auto& [value, text] : shown) {
        Construct({});
        Configure("ShowRoamingIndicator", value);
        EXPECT_EQ(ValueOf("statusBarRoaming"), text) << value;
    }
    Construct({});
    EXPECT_EQ(ValueOf("statusBarRoaming"), "(absent)");
    Configure("Other", "1");
    EXPECT_EQ(ValueOf("statusBarRoaming"), "(absent)");
}

TEST_F(InternetStatus, DomesticRoamingOfASimWhoseGidByteIsTwoIsNotShown) {
    Configure("ShowRoamingIndicator", "1");
    service.roaming = SYS_ROAMING_DOMESTIC;
    gid = 2;
    EXPECT_EQ(ValueOf("statusBarRoaming"), "None");
    // A new component has its own cache and reads the identifier again.
    Construct({});
    Configure("ShowRoamingIndicator", "1");
    gid = 3;
    EXPECT_EQ(ValueOf("statusBarRoaming"), "Domestic");
}

TEST_F(InternetStatus, SubscriberIsRefreshedEvenWhereRoamingIsNotShown) {
    Json();
    EXPECT_EQ(CallCount("sys_getSubscriberInfo"), 1U);
    EXPECT_EQ(CallCount("sys_getSIMCarrierGID"), 1U);
}

TEST_F(InternetStatus, FailedSubscriberOrGidDoesNotAbortTheGroup) {
    Configure("ShowRoamingIndicator", "1");
    service.roaming = SYS_ROAMING_DOMESTIC;
    Given("sys_getSubscriberInfo").Returns(9);
    EXPECT_EQ(ValueOf("statusBarRoaming"), "Domestic");
    recording::Reset();
    Given("sys_getSIMCarrierGID").Returns(9);
    EXPECT_EQ(ValueOf("statusBarRoaming"), "Domestic");
    EXPECT_EQ(Value("statusBarNetwork"), "Orvane");
}

TEST_F(InternetStatus, PreferredTechnologyIsShownWhereOthersThanTheCarriersAreNot) {
    const std::string lte = "wwan_settings_preferred_network_lte_cdma_text";
    const std::map<std::string, std::string> shown = {
        {"0", lte}, {"no", lte}, {"", lte}, {"1", "(absent)"}, {"-1", "(absent)"}};
    for (const auto& [value, text] : shown) {
        Construct({});
        Configure("ShowNonOrvaneTechnologies", value);
        Given("sys_getEnabledRadioTechnologies").Writes(16);
        EXPECT_EQ(ValueOf("statusBarPreferredTechnology"), text) << value;
        EXPECT_EQ(CallCount("sys_getEnabledRadioTechnologies"), text == lte ? 1U : 0U) << value;
    }
    Construct({});
    EXPECT_EQ(ValueOf("statusBarPreferredTechnology"), "(absent)");
}

TEST_F(InternetStatus, PreferredTechnologyThatCannotBeReadIsGlobalWhateverTheCallWrote) {
    Configure("ShowNonOrvaneTechnologies", "0");
    Given("sys_getEnabledRadioTechnologies").Returns(9).Writes(16);
    EXPECT_EQ(ValueOf("statusBarPreferredTechnology"),
              "wwan_settings_preferred_network_global_text");
}

TEST_F(InternetStatus, PreferredTechnologyThatIsNotWrittenIsGlobal) {
    Configure("ShowNonOrvaneTechnologies", "0");
    Given("sys_getEnabledRadioTechnologies").Returns(SYS_SUCCESS);
    EXPECT_EQ(ValueOf("statusBarPreferredTechnology"),
              "wwan_settings_preferred_network_global_text");
}

TEST_F(InternetStatus, PreferredTechnologyIsTranslated) {
    translations::Give("webui", "wwan_settings_preferred_network_global_text", "Global");
    Configure("ShowNonOrvaneTechnologies", "0");
    Given("sys_getEnabledRadioTechnologies").Writes(31);
    EXPECT_EQ(ValueOf("statusBarPreferredTechnology"), "Global");
}

}  // namespace
