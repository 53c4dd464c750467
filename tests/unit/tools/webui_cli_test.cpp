// webui_cli: which platform calls each command makes and what it prints.
#include <gtest/gtest.h>

#include "bindings/recording/recording.h"
#include "platform/webui.h"
#include "tests/support/records.h"
#include "tests/unit/tools/transcript.h"
#include "tools/webui_commands.h"

using recording::Given;
using recording::TranscriptText;

namespace {

class WebuiCli : public testing::Test {
  protected:
    void SetUp() override { recording::Reset(); }

    static std::string Run(const std::vector<std::string>& arguments) {
        return Shown(WebuiTool(), arguments);
    }

    template <typename Record>
    static void GivenList(const std::string& call, const std::vector<Record>& records) {
        const auto count = static_cast<int>(records.size());
        Given(call).Returns(WEBUI_BUFFER_NEEDED).WritesNothing().Writes(count);
        Given(call).Returns(WEBUI_SUCCESS).WritesRecords(records).Writes(count);
    }
};

const std::string kFeatures = R"({
    "features": [
        {
            "name": "IsWiFiSupported",
            "value": 1
        },
        {
            "name": "Limit",
            "value": 255
        }
    ]
}
)";

TEST_F(WebuiCli, ShowsTheDevicesFeatures) {
    GivenList<webui_feature_t>("webui_get_common_features",
                               {Feature("IsWiFiSupported", 1), Feature("Limit", 255)});
    EXPECT_EQ(Run({"get_common_features"}), kFeatures);
    EXPECT_EQ(TranscriptText(),
              "webui_get_common_features(no buffer)\nwebui_get_common_features(room for 2)\n");
}

TEST_F(WebuiCli, ShowsTheFeaturesOfAnApplication) {
    GivenList<webui_feature_t>("webui_get_app_features",
                               {Feature("IsWiFiSupported", 1), Feature("Limit", 255)});
    EXPECT_EQ(Run({"get_app_features", "status"}), kFeatures);
    EXPECT_EQ(TranscriptText(),
              "webui_get_app_features(status, no buffer)\n"
              "webui_get_app_features(status, room for 2)\n");
}

const std::string kConfigurations = R"({
    "configurations": [
        {
            "name": "IsABPartitionEnabled",
            "value": "1"
        }
    ]
}
)";

TEST_F(WebuiCli, ShowsTheDevicesConfigurations) {
    GivenList<webui_configuration_t>("webui_get_common_configurations",
                                     {Configuration("IsABPartitionEnabled", "1")});
    EXPECT_EQ(Run({"get_common_configurations"}), kConfigurations);
}

TEST_F(WebuiCli, ShowsTheConfigurationsOfAnApplication) {
    GivenList<webui_configuration_t>("webui_get_app_configurations",
                                     {Configuration("IsABPartitionEnabled", "1")});
    EXPECT_EQ(Run({"get_app_configurations", "status"}), kConfigurations);
    EXPECT_EQ(TranscriptText(),
              "webui_get_app_configurations(status, no buffer)\n"
              "webui_get_app_configurations(status, room for 1)\n");
}

TEST_F(WebuiCli, AListMayBeEmpty) {
    Given("webui_get_common_features").Returns(WEBUI_SUCCESS).WritesNothing().Writes(0);
    EXPECT_EQ(Run({"get_common_features"}), "{\n    \"features\": []\n}\n");
}

TEST_F(WebuiCli, ACountThatMakesNoSenseFails) {
    Given("webui_get_common_features").Returns(WEBUI_BUFFER_NEEDED).WritesNothing().Writes(-1);
    EXPECT_EQ(Run({"get_common_features"}),
              "webui_cli: webui_get_common_features failed, returned error code 983043 "
              "(buffer_needed)\n[1]\n");
    EXPECT_EQ(recording::CallCount("webui_get_common_features"), 1U);
}

TEST_F(WebuiCli, ANegativeCountOfRecordsCountsAsZero) {
    Given("webui_get_common_features").Returns(WEBUI_BUFFER_NEEDED).WritesNothing().Writes(1);
    Given("webui_get_common_features").Returns(WEBUI_SUCCESS).WritesNothing().Writes(-1);
    EXPECT_EQ(Run({"get_common_features"}), "{\n    \"features\": []\n}\n");
}

TEST_F(WebuiCli, ShowsAPage) {
    webui_uri_data_t data{};
    SetText(data.address, "/messages");
    SetText(data.titleId, "webui_sms_title");
    Given("webui_get_uri_data").Returns(WEBUI_SUCCESS).Writes(data);
    EXPECT_EQ(Run({"get_uri_data", "sms"}),
              "{\n    \"address\": \"/messages\",\n    \"titleId\": \"webui_sms_title\"\n}\n");
    EXPECT_EQ(TranscriptText(), "webui_get_uri_data(sms)\n");
}

TEST_F(WebuiCli, ShowsAPageOutside) {
    webui_external_uri_data_t data{};
    SetText(data.reserved, "not this");
    SetText(data.address, "https://support.example");
    Given("webui_get_external_uri_data").Returns(WEBUI_SUCCESS).Writes(data);
    EXPECT_EQ(Run({"get_external_uri_data", "support"}),
              "{\n    \"address\": \"https://support.example\"\n}\n");
    EXPECT_EQ(TranscriptText(), "webui_get_external_uri_data(support)\n");
}

TEST_F(WebuiCli, ShowsTheLanguageByEitherName) {
    Given("webui_get_i18n_settings").Returns(WEBUI_SUCCESS).Writes(Language("en_US"));
    const std::string expected = "{\n    \"language\": \"en_US\"\n}\n";
    EXPECT_EQ(Run({"get_i18n_settings"}), expected);
    EXPECT_EQ(Run({"get_internationalization_settings"}), expected);
}

TEST_F(WebuiCli, ShowsTheSoftwareUpdate) {
    webui_software_update_status_t status{};
    status.status = 5;
    status.userInitiated = 1;
    status.value = -7;
    SetText(status.version, "2.14.0");
    Given("webui_get_software_update_status").Returns(WEBUI_SUCCESS).Writes(status);
    EXPECT_EQ(Run({"get_software_update_status"}), R"({
    "status": 5,
    "userInitiated": 1,
    "value": -7,
    "version": "2.14.0"
}
)");
}

TEST_F(WebuiCli, ShowsTheDurationByEitherName) {
    Given("webui_get_software_installation_duration").Returns(WEBUI_SUCCESS).Writes(10);
    EXPECT_EQ(Run({"get_software_installation_duration"}), "{\n    \"duration\": 10\n}\n");
    EXPECT_EQ(Run({"software_installation_duration"}), "{\n    \"duration\": 10\n}\n");
}

TEST_F(WebuiCli, ShowsTheCarriersTexts) {
    SoftwareUpdateCustomMessages messages{};
    SetText(messages.description, "a");
    SetText(messages.download, "b");
    SetText(messages.readyToInstall,
            "Es ist \xC3\xBC"
            "berall");
    SetText(messages.installSuccess, "d\n");
    Given("webui_get_software_update_custom_msgs").Returns(WEBUI_SUCCESS).Writes(messages);
    EXPECT_EQ(Run({"get_software_update_custom_msgs", "de_DE"}),
              "{\n    \"description\": \"a\",\n    \"download\": \"b\",\n"
              "    \"readyToInstall\": \"Es ist \xC3\xBC"
              "berall\",\n"
              "    \"installSuccess\": \"d\\n\",\n    \"installFail\": \"\"\n}\n");
    EXPECT_EQ(TranscriptText(), "webui_get_software_update_custom_msgs(de_DE)\n");
}

TEST_F(WebuiCli, EveryFailingCallPrintsItsCode) {
    const Tool tool = WebuiTool();
    for (const Command& command : tool.commands) {
        recording::Reset();
        const std::string call = "webui_" + command.names.front();
        Given(call).Returns(0);
        EXPECT_EQ(Run(Acceptable(command)), "webui_cli: " + call +
                                                " failed, returned error code 0 (no name; what it "
                                                "means depends on the device)\n[1]\n");
        EXPECT_EQ(recording::CallCount(call), 1U);
    }
}

}  // namespace
