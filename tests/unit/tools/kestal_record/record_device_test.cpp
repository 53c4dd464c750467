// What is asked when a device is recorded, and what becomes of answers that a document cannot hold.
#include "tools/kestal_record/record_device.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <nlohmann/json.hpp>
#include <set>

#include "bindings/recording/recording.h"
#include "declared_calls.h"
#include "platform/msgbus.h"
#include "platform/sysint.h"
#include "platform/webui.h"
#include "tests/support/records.h"
#include "tools/kestal_record/document_form.h"

using recording::CallCount;
using recording::Given;

namespace {

class RecordDeviceTest : public testing::Test {
  protected:
    void SetUp() override { recording::Reset(); }

    Json Recorded() { return RecordDevice({{}, {}, binding::kBindingCode}, remarks); }

    Remarks remarks;
};

/// Calls that tell nothing about the device, act on it, or belong to the session that is recorded.
const std::set<std::string> kNoQueries = {"sys_cellularDataConnect",
                                          "sys_cellularDataDisconnect",
                                          "GetIPAddressFamily",
                                          "toru_dbg_get_level_name",
                                          "toru_dbg_log",
                                          "toru_dbg_start",
                                          "toru_dbg_stop",
                                          "toru_dbg_syslog",
                                          "watchdog_application_register",
                                          "watchdog_application_send_keep_alive"};
constexpr std::array kNoQueryClasses = {
    "AuthSession::", "CgiHelper::", "LanguageSupport::", "MaintenanceThread::",
    "MaintenanceThreadCallbackInterface::"};

bool IsQuery(const std::string& call) {
    return !kNoQueries.contains(call) &&
           std::none_of(kNoQueryClasses.begin(), kNoQueryClasses.end(),
                        [&](const char* name) { return call.starts_with(name); });
}

TEST_F(RecordDeviceTest, MakesEachQueryOfThePlatformAndNothingElse) {
    const Json device = Recorded();
    int queries = 0;
    for (const DeclaredCall& call : kDeclaredCalls) {
        const std::string name = call.name;
        EXPECT_EQ(CallCount(name) > 0, IsQuery(name)) << name;
        if (name.starts_with("sys_get")) {
            EXPECT_TRUE(device.at("sys").contains(name.substr(4))) << name;
        }
        queries += IsQuery(name) ? 1 : 0;
    }
    EXPECT_GT(queries, 60);
}

TEST_F(RecordDeviceTest, CodesHaveNamesWhereADocumentHasThem) {
    Given("sys_getSDCardInfo").Returns(SYS_ERROR_NO_SD_CARD);
    Given("sys_getGPSStatus").Returns(9001);
    Given("sys_getSIMStatus").Returns(-7);
    Given("webui_get_i18n_settings").Returns(WEBUI_SUCCESS + 9001);
    Given("webui_get_software_update_status").Returns(9001);
    const Json device = Recorded();
    EXPECT_EQ(device["sys"]["getSDCardInfo"].dump(), R"({"error":"error_no_sd_card"})");
    EXPECT_EQ(device["sys"]["getGPSStatus"].dump(), R"({"error":"not_answered"})");
    EXPECT_EQ(device["sys"]["getSIMStatus"].dump(), R"({"error":-7})");
    EXPECT_EQ(device["webui"]["i18nSettings"].dump(), R"({"error":"not_answered"})");
    EXPECT_EQ(device["webui"]["softwareUpdateStatus"].dump(), R"({"error":9001})");
    // Another device's own libraries may mean something else.
    const Json other = RecordDevice({{}, {}, {}}, remarks);
    EXPECT_EQ(other["sys"]["getGPSStatus"].dump(), R"({"error":9001})");
}

TEST_F(RecordDeviceTest, CodesOfSuccessElsewhereAreFailuresThatADocumentCanHold) {
    Given("sys_getGPSStatus").Returns(WEBUI_SUCCESS);
    Given("webui_get_i18n_settings").Returns(SYS_SUCCESS);
    Given("MsgbusHandler::GetData").Returns(WEBUI_SUCCESS);
    const Json device = Recorded();
    EXPECT_EQ(device["sys"]["getGPSStatus"].dump(), R"({"error":1})");
    EXPECT_EQ(device["webui"]["i18nSettings"].dump(), R"({"error":983041})");
    EXPECT_EQ(device["msgbus"].front().dump(), R"({"error":1})");
}

TEST_F(RecordDeviceTest, ADeviceThatCannotBeOpenedIsAskedAllTheSame) {
    Given("sys_sdkInitialize").Returns(3);
    Given("sys_getSIMStatus").Writes<int>(SYS_SIM_READY);
    Given("MsgbusHandler::Initialize").Returns(4);
    const Json device = Recorded();
    EXPECT_EQ(device["sys"]["sdkInitialize"].dump(), R"({"error":3,"healed":null})");
    EXPECT_EQ(device["sys"]["getSIMStatus"].dump(), R"("ready")");
    EXPECT_EQ(device["msgbus"].front().dump(), R"({"error":"buffer_needed"})");
    EXPECT_EQ(CallCount("sys_sdkShutdown"), 1U);
}

TEST_F(RecordDeviceTest, NamesThatADocumentCannotHaveAreLeftOutAndReported) {
    std::vector<webui_feature_t> features(4);
    const std::array<std::string, 4> names = {"Good", "\xFF", std::string(50, 'x'), "error"};
    for (std::size_t index = 0; index < features.size(); ++index) {
        std::copy(names.at(index).begin(), names.at(index).end(), features[index].name);
        features[index].value = static_cast<std::uint8_t>(index);
    }
    Given("webui_get_common_features")
        .Returns(WEBUI_BUFFER_NEEDED)
        .WritesNothing()
        .Writes<int>(static_cast<int>(features.size()));
    Given("webui_get_common_features")
        .Returns(WEBUI_SUCCESS)
        .WritesRecords(features)
        .Writes<int>(static_cast<int>(features.size()));
    EXPECT_EQ(Recorded()["webui"]["commonFeatures"].dump(), R"({"Good":0})");
    EXPECT_EQ(remarks.size(), 2U);
}

TEST_F(RecordDeviceTest, AListWithoutEndIsRefused) {
    Given("sys_getConnectedDeviceList")
        .Returns(SYS_ERROR_BUFFER_NEEDED)
        .WritesNothing()
        .Writes<unsigned int>(UINT_MAX);
    try {
        (void)Recorded();
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(),
                     "sys_getConnectedDeviceList says that it has 4294967295 records");
    }
    EXPECT_EQ(CallCount("sys_sdkShutdown"), 1U);
}

TEST_F(RecordDeviceTest, TextsThatAreNotUtf8OrNotTerminatedAreBytes) {
    const auto same = [](const std::string& text) { return text; };
    EXPECT_EQ(Finished(RawText("a\"", 3), same).dump(), R"("a\"")");
    EXPECT_EQ(Finished(RawText("abc", 3), same).dump(), R"({"bytes":"616263"})");
    EXPECT_EQ(Finished(RawText("\xFF", 3), same).dump(), R"({"bytes":"ff"})");
    EXPECT_EQ(Finished(RawText("a\xFF", 9), [](const auto&) { return "b"; }).dump(), R"("b")");
    EXPECT_EQ(Finished(Json{{"bytes", "61ff"}}, [](const auto& text) { return text + "b"; }).dump(),
              R"({"bytes":"61ff62"})");
    // What replaces a text is cut rather than too long for its field.
    EXPECT_EQ(Finished(RawText("ab", 4), [](const auto&) { return "cdef"; }).dump(), R"("cd")");
    EXPECT_EQ(Finished(RawText("ab", 4), [](const auto&) { return "cde"; }).dump(), R"("cde")");
    // A device may have values with these names.
    const Json features = {{"text", 1}, {"room", 2}};
    EXPECT_EQ(Finished(features, same), features);
}

}  // namespace
