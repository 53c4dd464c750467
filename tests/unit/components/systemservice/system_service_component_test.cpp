#include "components/systemservice/system_service_component.h"

#include <gtest/gtest.h>

#include <set>

#include "bindings/recording/recording.h"
#include "components/systemservice/service_api.h"
#include "tests/support/json.h"
#include "tests/support/transcript.h"
#include "tests/support/translations.h"
#include "tests/support/vtable.h"

using recording::Failure;
using recording::Given;
using recording::Lines;
using recording::Log;

namespace {

const std::string kDispatch =
    " - virtual PageError SystemServiceComponent::Dispatch(CTPP::CDT&, int)";
const std::string kGetDynamicData =
    " - virtual PageError SystemServiceComponent::GetDynamicData(CTPP::CDT&, const CTPP::CDT&)";
const std::string kValidate =
    " - virtual int SystemServiceComponent::ValidateFormData(const CTPP::CDT&, CTPP::CDT&)";
const std::string kStore =
    " - virtual PageError SystemServiceComponent::StoreData(const CTPP::CDT&, CTPP::CDT&)";
const std::string kPerform =
    " - PageError SystemServiceComponent::PerformConnectAction(const string&)";

const char* const kUnsupported = R"({"errorDesc":"system_service_unsupport_operation_error_text"})";
const char* const kFailed = R"({"errorDesc":"system_service_failed_operation_error_text"})";

CTPP::CDT Api(const std::string& name) {
    CTPP::CDT in;
    in["api"] = name;
    return in;
}

class SystemServiceComponentTest : public testing::Test {
  protected:
    void SetUp() override {
        recording::Reset();
        translations::Reset();
    }

    SystemServiceComponent component;
    CTPP::CDT out;
};

TEST_F(SystemServiceComponentTest, ConstructorLogsBeginAndPlainEnd) {
    const SystemServiceComponent another;
    const std::string signature = " - SystemServiceComponent::SystemServiceComponent()";
    EXPECT_EQ(recording::TranscriptText(),
              Lines({Log(7, signature + " - BEGIN"), Log(7, signature + " - END")}));
}

TEST_F(SystemServiceComponentTest, OnlyItsOwnSlotsAreOverriddenAndDispatchFollows) {
    const PageComponent base;
    const auto own = VirtualFunctions<9>(component);
    const auto inherited = VirtualFunctions<9>(base);
    // GetDynamicData, ValidateFormData, StoreData and the two destructors.
    const std::set<std::size_t> overridden = {1, 4, 6, 7, 8};
    for (std::size_t slot = 0; slot < own.size(); ++slot) {
        EXPECT_EQ(own.at(slot) != inherited.at(slot), overridden.contains(slot)) << slot;
    }
#if defined(__x86_64__) || defined(__i386__)
    EXPECT_EQ(Slot(&SystemServiceComponent::Dispatch), 9U);
#endif
}

TEST_F(SystemServiceComponentTest, ConnectStartsTheDataCallAndLeavesTheAnswerEmpty) {
    Given("sys_cellularDataConnect").Returns(0);
    EXPECT_EQ(component.Dispatch(out, SERVICE_API_CONNECT), PAGE_ERROR_NONE);
    EXPECT_EQ(out.GetType(), CTPP::CDT::UNDEF);
    EXPECT_EQ(recording::TranscriptText(),
              Lines({Log(7, kDispatch + " - BEGIN"), Log(7, kPerform + " - BEGIN"),
                     "sys_cellularDataConnect(0)", Log(7, kPerform + " - END returning 0"),
                     Log(7, kDispatch + " - END returning 0")}));
}

TEST_F(SystemServiceComponentTest, FailingConnectIsLoggedAndGivesFailureWithAnEmptyAnswer) {
    Given("sys_cellularDataConnect").Returns(77);
    EXPECT_EQ(component.Dispatch(out, 2), PAGE_ERROR_FAILED);
    EXPECT_EQ(out.GetType(), CTPP::CDT::UNDEF);
    EXPECT_EQ(
        recording::TranscriptText(),
        Steps({Log(7, kDispatch + " - BEGIN"), Log(7, kPerform + " - BEGIN"),
               "sys_cellularDataConnect(0)",
               Failure(kPerform + " -system interface API failed returning [77]. Try sysintcli "
                                  "cellularDataConnect on the command line"),
               Log(7, kPerform + " - END returning 1"), Log(7, kDispatch + " - END returning 1")}));
}

TEST_F(SystemServiceComponentTest, DisconnectStopsTheDataCall) {
    Given("sys_cellularDataDisconnect").Returns(0);
    EXPECT_EQ(component.Dispatch(out, SERVICE_API_DISCONNECT), PAGE_ERROR_NONE);
    EXPECT_EQ(recording::TranscriptText("sys_"), Lines({"sys_cellularDataDisconnect(0)"}));
}

TEST_F(SystemServiceComponentTest, FailingDisconnectIsLogged) {
    Given("sys_cellularDataDisconnect").Returns(-3);
    EXPECT_EQ(component.Dispatch(out, 3), PAGE_ERROR_FAILED);
    EXPECT_EQ(recording::TranscriptText("log 3"),
              Lines({Log(3, kPerform + " -system interface API failed returning [-3]. Try "
                                       "sysintcli cellularDataDisconnect on the command line")}));
    EXPECT_EQ(recording::TranscriptText("syslog"),
              Lines({"syslog 138 [KESTAL_CGI]:[ERROR]" + kPerform +
                     " -system interface API failed returning [-3]. Try sysintcli "
                     "cellularDataDisconnect on the command line"}));
}

TEST_F(SystemServiceComponentTest, OtherActionDoesNothingAndSucceeds) {
    for (const std::string action : {"", "2", "1 ", "connect"}) {
        recording::Reset();
        EXPECT_EQ(component.PerformConnectAction(action), PAGE_ERROR_NONE);
        EXPECT_EQ(recording::TranscriptText(),
                  Lines({Log(7, kPerform + " - BEGIN"), Log(7, kPerform + " - END returning 0")}));
    }
}

TEST_F(SystemServiceComponentTest, UnknownNumberTouchesNothingAndFails) {
    for (const int api : {4, 5, 7, -1}) {
        recording::Reset();
        EXPECT_EQ(component.Dispatch(out, api), PAGE_ERROR_FAILED);
        EXPECT_EQ(out.GetType(), CTPP::CDT::UNDEF);
        EXPECT_EQ(recording::TranscriptText(), Lines({Log(7, kDispatch + " - BEGIN"),
                                                      Log(7, kDispatch + " - END returning 1")}));
    }
}

/// Records the number that each read operation passes to the dispatcher.
class Overriding : public SystemServiceComponent {
  public:
    PageError Dispatch(CTPP::CDT& /*out*/, int api) override {
        numbers.push_back(api);
        return static_cast<PageError>(40 + api);
    }
    std::vector<int> numbers;
};

TEST_F(SystemServiceComponentTest, ReadOperationsGoThroughTheVirtualDispatch) {
    Overriding overriding;
    recording::Reset();
    EXPECT_EQ(overriding.GetDynamicData(out, Api("status")), 41);
    EXPECT_EQ(overriding.GetDynamicData(out, Api("notification")), 40);
    EXPECT_EQ(overriding.numbers, (std::vector<int>{1, 0}));
    EXPECT_EQ(recording::TranscriptText(),
              Lines({Log(7, kGetDynamicData + " - BEGIN"),
                     Log(7, kGetDynamicData + " api called is status"),
                     Log(7, kGetDynamicData + " - END returning 41"),
                     Log(7, kGetDynamicData + " - BEGIN"),
                     Log(7, kGetDynamicData + " api called is notification"),
                     Log(7, kGetDynamicData + " - END returning 40")}));
}

TEST_F(SystemServiceComponentTest, OtherReadNamesDoNothingAndFail) {
    Overriding overriding;
    for (const std::string name : {"connect", "Status", "status ", ""}) {
        EXPECT_EQ(overriding.GetDynamicData(out, Api(name)), PAGE_ERROR_FAILED);
    }
    EXPECT_EQ(overriding.GetDynamicData(out, CTPP::CDT()), PAGE_ERROR_FAILED);
    EXPECT_TRUE(overriding.numbers.empty());
    EXPECT_EQ(out.GetType(), CTPP::CDT::UNDEF);
}

TEST_F(SystemServiceComponentTest, RequestTreeIsLeftAsItWas) {
    CTPP::CDT in;
    in["other"] = "1";
    component.ValidateFormData(in, out);
    EXPECT_EQ(ToJson(in), R"({"other":"1"})");
}

TEST_F(SystemServiceComponentTest, WriteOperationsAreAccepted) {
    for (const std::string name : {"connect", "disconnect", "passcoderecovery"}) {
        recording::Reset();
        EXPECT_EQ(component.ValidateFormData(Api(name), out), 0);
        EXPECT_EQ(
            recording::TranscriptText(),
            Lines({Log(7, kValidate + " - BEGIN"), Log(7, kValidate + " - Api called is " + name),
                   Log(7, kValidate + " - END returning 0")}));
    }
    EXPECT_EQ(out.GetType(), CTPP::CDT::UNDEF);
}

TEST_F(SystemServiceComponentTest, OtherWriteNamesAreRejectedWithAnErrorText) {
    for (const std::string name : {"Connect", "status", "connect ", ""}) {
        recording::Reset();
        CTPP::CDT answer;
        EXPECT_EQ(component.ValidateFormData(Api(name), answer), 1);
        EXPECT_EQ(ToJson(answer), kUnsupported);
        EXPECT_EQ(
            recording::TranscriptText(),
            Steps({Log(7, kValidate + " - BEGIN"), Log(7, kValidate + " - Api called is " + name),
                   Failure(kValidate + " - system service unsupported operation"),
                   Log(7, kValidate + " - END returning 1")}));
    }
}

TEST_F(SystemServiceComponentTest, StoreConnectsAfterValidation) {
    Given("sys_cellularDataConnect").Returns(0);
    component.ValidateFormData(Api("connect"), out);
    recording::Reset();
    Given("sys_cellularDataConnect").Returns(0);
    EXPECT_EQ(component.StoreData(CTPP::CDT(), out), PAGE_ERROR_NONE);
    EXPECT_EQ(out.GetType(), CTPP::CDT::UNDEF);
    EXPECT_EQ(
        recording::TranscriptText(),
        Lines({Log(7, kStore + " - BEGIN"),
               "syslog 138 [KESTAL_CGI]:[NOTICE]" + kStore +
                   " - Establishing the cellular data connection",
               Log(5, kStore + " - Establishing the cellular data connection"),
               Log(7, kPerform + " - BEGIN"), "sys_cellularDataConnect(0)",
               Log(7, kPerform + " - END returning 0"), Log(7, kStore + " - END returning 0")}));
}

TEST_F(SystemServiceComponentTest, StoreThatFailsSetsAnErrorText) {
    component.ValidateFormData(Api("disconnect"), out);
    recording::Reset();
    Given("sys_cellularDataDisconnect").Returns(6);
    EXPECT_EQ(component.StoreData(CTPP::CDT(), out), PAGE_ERROR_FAILED);
    EXPECT_EQ(ToJson(out), kFailed);
    EXPECT_EQ(recording::TranscriptText("log 5"),
              Lines({Log(5, kStore + " - Terminating the cellular data connection")}));
    EXPECT_EQ(recording::Transcript().at(1), "syslog 138 [KESTAL_CGI]:[NOTICE]" + kStore +
                                                 " - Terminating the cellular data connection");
    EXPECT_EQ(recording::Transcript().back(), Log(7, kStore + " - END returning 1"));
}

TEST_F(SystemServiceComponentTest, PasscodeRecoveryPassesValidationButStoresNothing) {
    EXPECT_EQ(component.ValidateFormData(Api("passcoderecovery"), out), 0);
    EXPECT_EQ(component.StoreData(CTPP::CDT(), out), PAGE_ERROR_FAILED);
    EXPECT_EQ(ToJson(out), kFailed);
    EXPECT_EQ(recording::TranscriptText("sys_"), "");
}

TEST_F(SystemServiceComponentTest, ErrorTextsAreTranslatedInTheDomainOfTheWebUi) {
    translations::Give("webui", "system_service_unsupport_operation_error_text", "Geht nicht");
    translations::Give("webui", "system_service_failed_operation_error_text", "Ging nicht");
    component.ValidateFormData(Api("status"), out);
    EXPECT_EQ(ToJson(out), R"({"errorDesc":"Geht nicht"})");
    component.StoreData(CTPP::CDT(), out);
    EXPECT_EQ(ToJson(out), R"({"errorDesc":"Ging nicht"})");
}

TEST_F(SystemServiceComponentTest, NameIsKeptThroughRequestsThatGoByNumber) {
    component.ValidateFormData(Api("connect"), out);
    component.Dispatch(out, SERVICE_API_UNKNOWN);
    Given("sys_cellularDataConnect").Returns(0);
    EXPECT_EQ(component.StoreData(CTPP::CDT(), out), PAGE_ERROR_NONE);
}

TEST_F(SystemServiceComponentTest, StoreActsOnTheLastNameEvenOfAReadOperation) {
    component.ValidateFormData(Api("connect"), out);
    component.GetDynamicData(out, Api("other"));
    CTPP::CDT answer;
    EXPECT_EQ(component.StoreData(Api("connect"), answer), PAGE_ERROR_FAILED);
    EXPECT_EQ(ToJson(answer), kFailed);
}

}  // namespace
