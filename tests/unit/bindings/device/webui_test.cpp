// The web UI configuration calls: the list protocol, names, failures.
#include "platform/webui.h"

#include <libintl.h>
#include <malloc.h>

#include <cstdlib>
#include <vector>

#include "bindings/device/codes.h"
#include "platform/sysint.h"
#include "tests/support/scratch.h"

namespace {

constexpr int kNotAnswered = binding::kWebuiCodeBase + binding::kNotAnswered;
constexpr int kNoDevice = binding::kWebuiCodeBase + binding::kNoDevice;

class Webui : public SimulatedDevice {
  protected:
    void Entry(const std::string& name, const std::string& value) const {
        Document("{\"webui\": {\"" + name + "\": " + value + "}}");
    }

    /// Goes through the list protocol as callers use it, for a list of the records "A" and "B".
    template <typename Record, typename Call>
    static void ExpectTwoRecords(Call call) {
        int count = 0;
        ASSERT_EQ(call(static_cast<Record*>(nullptr), &count), WEBUI_BUFFER_NEEDED);
        ASSERT_EQ(count, 2);
        std::vector<Record> records(3);
        count = 1;
        EXPECT_EQ(call(records.data(), &count), WEBUI_BUFFER_NEEDED);
        EXPECT_EQ(count, 2);
        EXPECT_STREQ(records[0].name, "");
        count = 3;
        EXPECT_EQ(call(records.data(), &count), WEBUI_SUCCESS);
        EXPECT_EQ(count, 2);
        EXPECT_STREQ(records[0].name, "A");
        EXPECT_STREQ(records[1].name, "B");
        EXPECT_STREQ(records[2].name, "");
    }

    /// Expects that a list call returns @p code at once and sets the count to @p expected.
    template <typename Record, typename Call>
    static void ExpectAtOnce(Call call, int code, int expected) {
        int count = 9;
        EXPECT_EQ(call(static_cast<Record*>(nullptr), &count), code);
        EXPECT_EQ(count, expected);
    }
};

template <typename Record, typename Call>
auto ForApp(Call call, const char* app) {
    return [=](Record* buffer, int* count) { return call(app, buffer, count); };
}

const auto kStatusFeatures = ForApp<webui_feature_t>(webui_get_app_features, "status");
const auto kStatusConfigurations =
    ForApp<webui_configuration_t>(webui_get_app_configurations, "status");

TEST_F(Webui, ListsReturnTheirSizeFirst) {
    Document(R"({"webui": {"commonFeatures": {"A": 1, "B": 2},
                           "commonConfigurations": {"A": "1", "B": "2"},
                           "appFeatures": {"status": {"A": 1, "B": 2}},
                           "appConfigurations": {"status": {"A": "1", "B": "2"}}}})");
    ExpectTwoRecords<webui_feature_t>(webui_get_common_features);
    ExpectTwoRecords<webui_configuration_t>(webui_get_common_configurations);
    ExpectTwoRecords<webui_feature_t>(kStatusFeatures);
    ExpectTwoRecords<webui_configuration_t>(kStatusConfigurations);
}

TEST_F(Webui, EmptyListsNeedNoBuffer) {
    Document(R"({"webui": {"commonFeatures": {}, "commonConfigurations": {},
                           "appFeatures": {"status": {}}, "appConfigurations": {"status": {}}}})");
    ExpectAtOnce<webui_feature_t>(webui_get_common_features, WEBUI_SUCCESS, 0);
    ExpectAtOnce<webui_configuration_t>(webui_get_common_configurations, WEBUI_SUCCESS, 0);
    ExpectAtOnce<webui_feature_t>(kStatusFeatures, WEBUI_SUCCESS, 0);
    ExpectAtOnce<webui_configuration_t>(kStatusConfigurations, WEBUI_SUCCESS, 0);
}

TEST_F(Webui, UnnamedCallsFailAndWriteNothing) {
    for (const std::string document : {"{}", R"({"webui": {"appFeatures": {"sms": {}},
            "appConfigurations": {"sms": {}}, "uriData": {}, "externalUriData": {},
            "softwareUpdateCustomMsgs": {"fr_FR": {}}}})"}) {
        Document(document);
        ExpectAtOnce<webui_feature_t>(webui_get_common_features, kNotAnswered, 9);
        ExpectAtOnce<webui_configuration_t>(webui_get_common_configurations, kNotAnswered, 9);
        ExpectAtOnce<webui_feature_t>(kStatusFeatures, kNotAnswered, 9);
        ExpectAtOnce<webui_configuration_t>(kStatusConfigurations, kNotAnswered, 9);
        webui_uri_data_t page{"before", "before"};
        EXPECT_EQ(webui_get_uri_data("sms", &page), kNotAnswered);
        EXPECT_STREQ(page.address, "before");
        webui_external_uri_data_t external{"", "before"};
        EXPECT_EQ(webui_get_external_uri_data("help", &external), kNotAnswered);
        EXPECT_STREQ(external.address, "before");
        webui_i18n_settings_t settings{"before"};
        EXPECT_EQ(webui_get_i18n_settings(&settings), kNotAnswered);
        EXPECT_STREQ(settings.language, "before");
        webui_software_update_status_t status{7, 7, 7, "before"};
        EXPECT_EQ(webui_get_software_update_status(&status), kNotAnswered);
        EXPECT_STREQ(status.version, "before");
        int duration = 9;
        EXPECT_EQ(webui_get_software_installation_duration(&duration), kNotAnswered);
        EXPECT_EQ(duration, 9);
        SoftwareUpdateCustomMessages messages{"before", "", "", "", "before"};
        EXPECT_EQ(webui_get_software_update_custom_msgs("de_DE", &messages), kNotAnswered);
        EXPECT_STREQ(messages.description, "before");
        EXPECT_STREQ(messages.installFail, "before");
    }
}

TEST_F(Webui, WholeEntriesFailAsTheDocumentSays) {
    const std::string failure = "{\"error\": 983055}";
    Document("{\"webui\": {\"commonFeatures\": " + failure + ", \"commonConfigurations\": " +
             failure + ", \"appFeatures\": " + failure + ", \"appConfigurations\": " + failure +
             ", \"uriData\": " + failure + ", \"externalUriData\": " + failure +
             ", \"i18nSettings\": " + failure + ", \"softwareUpdateStatus\": " + failure +
             ", \"softwareInstallationDuration\": " + failure +
             ", \"softwareUpdateCustomMsgs\": " + failure + "}}");
    ExpectAtOnce<webui_feature_t>(webui_get_common_features, 983055, 9);
    ExpectAtOnce<webui_configuration_t>(webui_get_common_configurations, 983055, 9);
    ExpectAtOnce<webui_feature_t>(kStatusFeatures, 983055, 9);
    ExpectAtOnce<webui_configuration_t>(kStatusConfigurations, 983055, 9);
    webui_uri_data_t page{};
    EXPECT_EQ(webui_get_uri_data("sms", &page), 983055);
    webui_external_uri_data_t external{};
    EXPECT_EQ(webui_get_external_uri_data("help", &external), 983055);
    webui_i18n_settings_t settings{};
    EXPECT_EQ(webui_get_i18n_settings(&settings), 983055);
    webui_software_update_status_t status{};
    EXPECT_EQ(webui_get_software_update_status(&status), 983055);
    int duration = 0;
    EXPECT_EQ(webui_get_software_installation_duration(&duration), 983055);
    SoftwareUpdateCustomMessages messages{};
    EXPECT_EQ(webui_get_software_update_custom_msgs("de_DE", &messages), 983055);
}

TEST_F(Webui, SinglePagesApplicationsAndLanguagesFailAsTheDocumentSays) {
    Document(R"({"webui": {"appFeatures": {"status": {"error": 1}},
                           "uriData": {"sms": {"error": 2}},
                           "externalUriData": {"help": {"error": 3}},
                           "softwareUpdateCustomMsgs": {"de_DE": {"error": 4}}}})");
    ExpectAtOnce<webui_feature_t>(kStatusFeatures, 1, 9);
    webui_uri_data_t page{};
    EXPECT_EQ(webui_get_uri_data("sms", &page), 2);
    webui_external_uri_data_t external{};
    EXPECT_EQ(webui_get_external_uri_data("help", &external), 3);
    SoftwareUpdateCustomMessages messages{};
    EXPECT_EQ(webui_get_software_update_custom_msgs("de_DE", &messages), 4);
}

TEST_F(Webui, RecordsAreDelivered) {
    Document(R"({"webui": {"uriData": {"sms": {"address": "/messages", "titleId": "sms_title"}},
                           "externalUriData": {"help": "https://example.invalid/"},
                           "i18nSettings": {"language": "de_DE"}}})");
    webui_uri_data_t page{};
    EXPECT_EQ(webui_get_uri_data("sms", &page), WEBUI_SUCCESS);
    EXPECT_STREQ(page.address, "/messages");
    EXPECT_STREQ(page.titleId, "sms_title");
    webui_external_uri_data_t external{};
    EXPECT_EQ(webui_get_external_uri_data("help", &external), WEBUI_SUCCESS);
    EXPECT_STREQ(external.address, "https://example.invalid/");
    webui_i18n_settings_t settings{};
    EXPECT_EQ(webui_get_i18n_settings(&settings), WEBUI_SUCCESS);
    EXPECT_STREQ(settings.language, "de_DE");
}

TEST_F(Webui, SoftwareUpdateIsDelivered) {
    Document(R"({"webui": {
        "softwareUpdateStatus": {"status": 5, "userInitiated": 1, "value": 2, "version": "2.1"},
        "softwareInstallationDuration": 10,
        "softwareUpdateCustomMsgs": {"de_DE": {"readyToInstall": "bereit"},
                                     "": {"readyToInstall": "ready"}}}})");
    webui_software_update_status_t status{};
    EXPECT_EQ(webui_get_software_update_status(&status), WEBUI_SUCCESS);
    EXPECT_EQ(status.status, 5);
    EXPECT_EQ(status.userInitiated, 1);
    EXPECT_EQ(status.value, 2);
    EXPECT_STREQ(status.version, "2.1");
    int duration = 0;
    EXPECT_EQ(webui_get_software_installation_duration(&duration), WEBUI_SUCCESS);
    EXPECT_EQ(duration, 10);
    SoftwareUpdateCustomMessages messages{};
    EXPECT_EQ(webui_get_software_update_custom_msgs("de_DE", &messages), WEBUI_SUCCESS);
    EXPECT_STREQ(messages.readyToInstall, "bereit");
    EXPECT_STREQ(messages.installFail, "");
    EXPECT_EQ(webui_get_software_update_custom_msgs("", &messages), WEBUI_SUCCESS);
    EXPECT_STREQ(messages.readyToInstall, "ready") << "a language may have no name";
}

TEST_F(Webui, WithoutADocumentEverythingFails) {
    ExpectAtOnce<webui_feature_t>(webui_get_common_features, kNoDevice, 9);
    webui_i18n_settings_t settings{};
    EXPECT_EQ(webui_get_i18n_settings(&settings), kNoDevice);
}

TEST_F(Webui, SharesTheSnapshotOfTheSession) {
    Entry("i18nSettings", R"({"language": "de_DE"})");
    EXPECT_EQ(sys_sdkInitialize(), 0);
    Entry("i18nSettings", R"({"language": "fr_FR"})");
    webui_i18n_settings_t settings{};
    EXPECT_EQ(webui_get_i18n_settings(&settings), WEBUI_SUCCESS);
    EXPECT_STREQ(settings.language, "de_DE");
    EXPECT_EQ(sys_sdkShutdown(), 0);
    EXPECT_EQ(webui_get_i18n_settings(&settings), WEBUI_SUCCESS);
    EXPECT_STREQ(settings.language, "fr_FR");
}

// The locale for each language is looked for. The C library counts blocks that it keeps for reuse
// as used, so there may be some more of them; one block for each change would be 32 bytes or more.
// Sanitizers have another malloc, which mallinfo2 does not describe; they look for leaks
// themselves.
TEST_F(Webui, ManyChangesOfTheLanguageLeaveNoMemoryBehind) {
    environment.Set("LOCPATH", "/nonexistent");
    textdomain("kestal");
    const auto change = [this](int times) {
        webui_i18n_settings_t settings{};
        for (int number = 0; number < times; ++number) {
            Entry("i18nSettings",
                  number % 2 == 0 ? R"({"language": "C"})" : R"({"language": "POSIX"})");
            EXPECT_EQ(webui_get_i18n_settings(&settings), WEBUI_SUCCESS);
        }
        return mallinfo2().uordblks;
    };
    const std::size_t before = change(10);
    EXPECT_LT(change(200), before + std::size_t{200} * 16);
    textdomain("messages");
}

}  // namespace
