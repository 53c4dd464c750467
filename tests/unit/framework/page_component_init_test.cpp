// Loading of features, configurations and the help address.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <new>
#include <stdexcept>

#include "bindings/recording/recording.h"
#include "framework/page_component.h"
#include "platform/webui.h"
#include "tests/support/json.h"
#include "tests/support/limited_memory.h"
#include "tests/support/records.h"
#include "tests/support/transcript.h"

using recording::Failure;
using recording::Given;
using recording::Lines;
using recording::Log;

namespace {

class TestComponent : public PageComponent {
  public:
    using PageComponent::appName;
    using PageComponent::configurations;
    using PageComponent::features;
    using PageComponent::fieldMap;
    using PageComponent::helpUri;
    using PageComponent::reserved;
    using PageComponent::useCommonConfigurations;
    using PageComponent::useCommonFeatures;
};

void GivenList(const std::string& call, const std::vector<webui_feature_t>& records) {
    const int count = static_cast<int>(records.size());
    Given(call).Returns(WEBUI_BUFFER_NEEDED).WritesNothing().Writes(count);
    Given(call).Returns(WEBUI_SUCCESS).WritesRecords(records).Writes(count);
}

void GivenList(const std::string& call, const std::vector<webui_configuration_t>& records) {
    const int count = static_cast<int>(records.size());
    Given(call).Returns(WEBUI_BUFFER_NEEDED).WritesNothing().Writes(count);
    Given(call).Returns(WEBUI_SUCCESS).WritesRecords(records).Writes(count);
}

constexpr const char* kInit = " - void PageComponent::Init(std::__cxx11::string)";
constexpr const char* kFeatures = " - int PageComponent::GetFeatures()";
constexpr const char* kConfigurations = " - int PageComponent::GetConfigurations()";

std::string Of(const char* signature, const std::string& text) {
    return signature + text;
}

class PageComponentInitTest : public testing::Test {
  protected:
    void SetUp() override { recording::Reset(); }

    TestComponent component;
};

TEST_F(PageComponentInitTest, NewComponentIsEmpty) {
    EXPECT_EQ(component.appName, "");
    EXPECT_EQ(component.helpUri, "");
    EXPECT_EQ(component.useCommonFeatures, 0U);
    EXPECT_EQ(component.useCommonConfigurations, 0U);
    EXPECT_EQ(component.features.GetType(), CTPP::CDT::UNDEF);
    EXPECT_EQ(component.configurations.GetType(), CTPP::CDT::UNDEF);
    EXPECT_EQ(recording::TranscriptText(), "");
}

TEST_F(PageComponentInitTest, FieldsHaveTheOrderOfTheFamily) {
    const std::vector<const void*> fields = {
        &component.appName,           &component.reserved, &component.useCommonConfigurations,
        &component.useCommonFeatures, &component.helpUri,  &component.features,
        &component.configurations,    &component.fieldMap};
    EXPECT_TRUE(std::is_sorted(fields.begin(), fields.end(), std::less<>()));
}

TEST_F(PageComponentInitTest, WithoutCommonFlagsAndNameNoCallIsMade) {
    EXPECT_EQ(component.GetFeatures(), WEBUI_SUCCESS);
    EXPECT_EQ(component.GetConfigurations(), WEBUI_SUCCESS);
    EXPECT_EQ(
        recording::TranscriptText(),
        Lines({Log(7, Of(kFeatures, " - BEGIN")), Log(7, Of(kFeatures, " - END returning 983040")),
               Log(7, Of(kConfigurations, " - BEGIN")),
               Log(7, Of(kConfigurations, " - END returning 983040"))}));
}

TEST_F(PageComponentInitTest, EmptyNameLoadsOnlyCommonListsAndNoHelpAddress) {
    component.useCommonFeatures = 1;
    component.useCommonConfigurations = 1;
    GivenList("webui_get_common_features", {Feature("Guest", 1)});
    GivenList("webui_get_common_configurations", {Configuration("ShowRoamingIndicator", "1")});
    component.Init("");
    EXPECT_EQ(ToJson(component.features), R"({"Guest":1})");
    EXPECT_EQ(ToJson(component.configurations), R"({"ShowRoamingIndicator":"1"})");
    EXPECT_EQ(component.helpUri, "");
    EXPECT_EQ(
        recording::TranscriptText(),
        Lines(
            {Log(7, Of(kInit, " - BEGIN")), Log(7, Of(kFeatures, " - BEGIN")),
             "webui_get_common_features(no buffer)",
             Log(6, Of(kFeatures,
                       " webui_get_common_features returned features_count: 1, "
                       "allocate sufficient memory")),
             "webui_get_common_features(room for 1)",
             Log(7, " - [common] feature name - [Guest] value - [1]"),
             Log(7, Of(kFeatures, " - END returning 983040")),
             Log(7, Of(kConfigurations, " - BEGIN")), "webui_get_common_configurations(no buffer)",
             Log(6, Of(kConfigurations,
                       " webui_get_common_configurations returned "
                       "configurations_count: 1, allocate sufficient memory")),
             "webui_get_common_configurations(room for 1)",
             Log(7, " - [common] configuration name - [ShowRoamingIndicator] value - [1]"),
             Log(7, Of(kConfigurations, " - END returning 983040")), Log(7, Of(kInit, " - END"))}));
}

TEST_F(PageComponentInitTest, NameAddsApplicationListsAndHelpAddress) {
    GivenList("webui_get_app_features", {Feature("A", 1), Feature("B", 2)});
    GivenList("webui_get_app_configurations", {Configuration("C", "text")});
    webui_uri_data_t uri{};
    SetText(uri.address, "/help/page");
    Given("webui_get_uri_data").Returns(WEBUI_SUCCESS).Writes(uri);
    component.Init("page");
    EXPECT_EQ(component.appName, "page");
    EXPECT_EQ(component.helpUri, "/help/page");
    EXPECT_EQ(ToJson(component.features), R"({"A":1,"B":2})");
    EXPECT_EQ(ToJson(component.configurations), R"({"C":"text"})");
    const char* getUri = " - std::__cxx11::string PageComponent::GetURI(const char*) const";
    EXPECT_EQ(
        recording::TranscriptText(),
        Lines({Log(7, Of(kInit, " - BEGIN")), Log(7, Of(kFeatures, " - BEGIN")),
               "webui_get_app_features(page, no buffer)",
               Log(6, Of(kFeatures,
                         " webui_get_app_features returned features_count2, allocate "
                         "sufficient memory")),
               "webui_get_app_features(page, room for 2)",
               Log(7, " - feature name - [A] value - [1]"),
               Log(7, " - feature name - [B] value - [2]"),
               Log(7, Of(kFeatures, " - END returning 983040")),
               Log(7, Of(kConfigurations, " - BEGIN")),
               "webui_get_app_configurations(page, no buffer)",
               Log(6, Of(kConfigurations,
                         " webui_get_app_configurations returned "
                         "configurations_count: 1, allocate sufficient memory")),
               "webui_get_app_configurations(page, room for 1)",
               Log(6, " - configuration name - [C] value - [text]"),
               Log(7, Of(kConfigurations, " - END returning 983040")),
               Log(7, Of(getUri, " - BEGIN")), "webui_get_uri_data(page_help)",
               Log(7, Of(getUri, " Friendly uri : /help/page for uri_id page_help")),
               Log(7, Of(getUri, " - END returning /help/page")), Log(7, Of(kInit, " - END"))}));
}

TEST_F(PageComponentInitTest, EveryFailureIsLoggedWithItsCommandAndAbsorbed) {
    component.useCommonFeatures = 1;
    component.useCommonConfigurations = 1;
    Given("webui_get_common_features").Returns(11);
    Given("webui_get_app_features").Returns(12);
    Given("webui_get_common_configurations").Returns(13);
    Given("webui_get_app_configurations").Returns(14);
    Given("webui_get_uri_data").Returns(15);
    component.Init("page");
    const char* getUri = " - std::__cxx11::string PageComponent::GetURI(const char*) const";
    EXPECT_EQ(
        recording::TranscriptText(),
        Steps(
            {Log(7, Of(kInit, " - BEGIN")),
             Log(7, Of(kFeatures, " - BEGIN")),
             "webui_get_common_features(no buffer)",
             Failure(Of(kFeatures,
                        " webui_get_common_features failed, returned error code 11. Try "
                        "webui_cli get_common_features from command line.")),
             "webui_get_app_features(page, no buffer)",
             Failure(Of(kFeatures,
                        " webui_get_app_features failed, returned error code 12. Try webui_cli "
                        "get_app_features from command line.")),
             Log(7, Of(kFeatures, " - END returning 12")),
             Failure(Of(kInit, " Unable to read the app features, returned error code 12.")),
             Log(7, Of(kConfigurations, " - BEGIN")),
             "webui_get_common_configurations(no buffer)",
             Failure(Of(kConfigurations,
                        " webui_get_common_configurations failed, returned error code 13. Try "
                        "webui_cli get_common_configurations from command line.")),
             "webui_get_app_configurations(page, no buffer)",
             Failure(Of(kConfigurations,
                        " webui_get_app_configurations failed, returned error code 14. Try "
                        "webui_cli get_app_configurations from command line.")),
             Log(7, Of(kConfigurations, " - END returning 14")),
             Failure(Of(kInit, " Unable to read the app configurations, returned error code 14.")),
             Log(7, Of(getUri, " - BEGIN")),
             "webui_get_uri_data(page_help)",
             Failure(Of(getUri,
                        " webui_get_uri_data failed, returned error code 15. Try webui_cli "
                        "get_uri_data from command line.")),
             Log(7, Of(getUri, " - END returning ")),
             Log(7, Of(kInit, " - END"))}));
    EXPECT_EQ(component.features.GetType(), CTPP::CDT::UNDEF);
    EXPECT_EQ(component.helpUri, "");
}

TEST_F(PageComponentInitTest, StatusOfTheLastCallIsReturned) {
    component.useCommonFeatures = 1;
    component.appName = "page";
    Given("webui_get_common_features").Returns(11);
    Given("webui_get_app_features").Returns(WEBUI_SUCCESS);
    EXPECT_EQ(component.GetFeatures(), WEBUI_SUCCESS);
}

TEST_F(PageComponentInitTest, SecondCallThatFailsLoadsNothing) {
    component.useCommonFeatures = 1;
    Given("webui_get_common_features").Returns(WEBUI_BUFFER_NEEDED).WritesNothing().Writes(1);
    Given("webui_get_common_features").Returns(21).WritesRecords(std::vector{Feature("A", 1)});
    EXPECT_EQ(component.GetFeatures(), 21);
    EXPECT_EQ(component.features.GetType(), CTPP::CDT::UNDEF);
    EXPECT_EQ(recording::TranscriptText("syslog") + recording::TranscriptText("log 3"),
              Steps({Failure(Of(kFeatures,
                                " webui_get_common_features failed, returned error code 21. Try "
                                "webui_cli get_common_features from command line."))}));
}

TEST_F(PageComponentInitTest, FirstCallThatSucceedsHasNothingToLoad) {
    component.useCommonFeatures = 1;
    Given("webui_get_common_features").Returns(WEBUI_SUCCESS).WritesNothing().Writes(3);
    EXPECT_EQ(component.GetFeatures(), WEBUI_SUCCESS);
    EXPECT_EQ(recording::CallCount("webui_get_common_features"), 1U);
    EXPECT_EQ(component.features.GetType(), CTPP::CDT::UNDEF);
}

TEST_F(PageComponentInitTest, CountOfZeroStillMakesTheSecondCallAndLoadsNothing) {
    component.useCommonFeatures = 1;
    GivenList("webui_get_common_features", std::vector<webui_feature_t>{});
    EXPECT_EQ(component.GetFeatures(), WEBUI_SUCCESS);
    EXPECT_EQ(
        recording::TranscriptText("webui_"),
        Lines({"webui_get_common_features(no buffer)", "webui_get_common_features(room for 0)"}));
    EXPECT_EQ(component.features.GetType(), CTPP::CDT::UNDEF);
}

TEST_F(PageComponentInitTest, NegativeCountLoadsNothing) {
    component.useCommonFeatures = 1;
    Given("webui_get_common_features").Returns(WEBUI_BUFFER_NEEDED).WritesNothing().Writes(-1);
    Given("webui_get_common_features").Returns(WEBUI_SUCCESS);
    EXPECT_EQ(component.GetFeatures(), WEBUI_SUCCESS);
    EXPECT_EQ(
        recording::TranscriptText("webui_"),
        Lines({"webui_get_common_features(no buffer)", "webui_get_common_features(room for 0)"}));
    EXPECT_EQ(component.features.GetType(), CTPP::CDT::UNDEF);
}

TEST_F(PageComponentInitTest, MoreRecordsThanThereWasRoomForAreNotRead) {
    component.useCommonFeatures = 1;
    Given("webui_get_common_features").Returns(WEBUI_BUFFER_NEEDED).WritesNothing().Writes(1);
    Given("webui_get_common_features")
        .Returns(WEBUI_SUCCESS)
        .WritesRecords(std::vector{Feature("A", 1)})
        .Writes(1000);
    EXPECT_EQ(component.GetFeatures(), WEBUI_SUCCESS);
    EXPECT_EQ(ToJson(component.features), R"({"A":1})");
}

TEST_F(PageComponentInitTest, FewerRecordsThanThereWasRoomForAreAllThatIsRead) {
    component.useCommonFeatures = 1;
    Given("webui_get_common_features").Returns(WEBUI_BUFFER_NEEDED).WritesNothing().Writes(5);
    Given("webui_get_common_features")
        .Returns(WEBUI_SUCCESS)
        .WritesRecords(std::vector{Feature("A", 1)})
        .Writes(1);
    EXPECT_EQ(component.GetFeatures(), WEBUI_SUCCESS);
    EXPECT_EQ(ToJson(component.features), R"({"A":1})");
}

TEST_F(PageComponentInitTest, CountThatNoMemoryCanHoldIsAFailureLikeAnyOther) {
    component.useCommonConfigurations = 1;
    Given("webui_get_common_configurations")
        .Returns(WEBUI_BUFFER_NEEDED)
        .WritesNothing()
        .Writes(std::numeric_limits<int>::max());
    EXPECT_EQ(component.GetConfigurations(), WEBUI_BUFFER_NEEDED);
    EXPECT_FALSE(component.WasCutShort());
    EXPECT_EQ(recording::CallCount("webui_get_common_configurations"), 1U);
    EXPECT_EQ(recording::TranscriptText("log 3"),
              Lines({Log(3, Of(kConfigurations,
                               " webui_get_common_configurations failed, returned error code "
                               "983043. Try webui_cli get_common_configurations from command "
                               "line."))}));
}

TEST_F(PageComponentInitTest, ListWithoutMemoryIsAFailureAndTheNextInitReadsItAgain) {
    component.useCommonFeatures = 1;
    component.useCommonConfigurations = 1;
    GivenList("webui_get_common_features", {Feature("A", 1), Feature("B", 2)});
    GivenList("webui_get_common_configurations", {Configuration("C", "3")});
    {
        const LimitedMemory limited(2 * sizeof(webui_feature_t) - 1);
        component.Init("");
    }
    EXPECT_TRUE(component.WasCutShort());
    EXPECT_EQ(component.features.GetType(), CTPP::CDT::UNDEF);
    EXPECT_EQ(ToJson(component.configurations), R"({"C":"3"})");
    EXPECT_EQ(recording::TranscriptText("log 3"),
              Lines({Log(3, Of(kFeatures, " - webui_get_common_features failed: std::bad_alloc")),
                     Log(3, Of(kFeatures,
                               " webui_get_common_features failed, returned error code 983043. "
                               "Try webui_cli get_common_features from command line.")),
                     Log(3, Of(kInit,
                               " Unable to read the app features, returned error code 983043."))}));
    recording::Reset();
    GivenList("webui_get_common_features", {Feature("A", 1), Feature("B", 2)});
    GivenList("webui_get_common_configurations", {Configuration("C", "3")});
    component.Init("");
    EXPECT_FALSE(component.WasCutShort());
    EXPECT_EQ(ToJson(component.features), R"({"A":1,"B":2})");
}

TEST_F(PageComponentInitTest, RecordThatCannotBeKeptIsAFailureOfItsList) {
    /// A library with one feature; storing its record fails for lack of memory.
    class OneFeature : public recording::Director {
      public:
        int Answer(const recording::Call& call) override {
            if (!call.outputs[0].empty()) {
                return WEBUI_SUCCESS;
            }
            call.outputs[1][0] = std::byte{1};
            return WEBUI_BUFFER_NEEDED;
        }
        void See(const std::string& line) override {
            if (line.find("feature name") != std::string::npos) {
                throw std::bad_alloc();
            }
        }
    } library;
    component.useCommonFeatures = 1;
    recording::Direct(&library);
    const int status = component.GetFeatures();
    recording::Direct(nullptr);
    EXPECT_EQ(status, WEBUI_BUFFER_NEEDED);
    EXPECT_TRUE(component.WasCutShort());
}

TEST_F(PageComponentInitTest, CountThatTheLibraryDoesNotWriteIsZero) {
    component.useCommonFeatures = 1;
    Given("webui_get_common_features").Returns(WEBUI_BUFFER_NEEDED);
    Given("webui_get_common_features").Returns(WEBUI_SUCCESS);
    EXPECT_EQ(component.GetFeatures(), WEBUI_SUCCESS);
    EXPECT_EQ(
        recording::TranscriptText("webui_"),
        Lines({"webui_get_common_features(no buffer)", "webui_get_common_features(room for 0)"}));
}

TEST_F(PageComponentInitTest, OnlyAListOfUsualLengthCountsAsCutShortWithoutMemory) {
    component.useCommonFeatures = 1;
    const LimitedMemory limited(0);
    for (const int count : {1, 10000, 10001}) {
        recording::Reset();
        Given("webui_get_common_features")
            .Returns(WEBUI_BUFFER_NEEDED)
            .WritesNothing()
            .Writes(count);
        component.Init("");
        EXPECT_EQ(component.WasCutShort(), count <= 10000) << count;
    }
}

TEST_F(PageComponentInitTest, ListThatThrowsDoesNotPreventTheOthers) {
    const std::string calls[] = {"webui_get_common_features", "webui_get_app_features",
                                 "webui_get_common_configurations", "webui_get_app_configurations"};
    for (const std::string& throwing : calls) {
        for (const bool atOnce : {true, false}) {
            recording::Reset();
            if (!atOnce) {
                Given(throwing).Returns(WEBUI_BUFFER_NEEDED).WritesNothing().Writes(1);
            }
            Given(throwing).Does([] { throw std::runtime_error("no list"); });
            for (const std::string& call : calls) {
                if (call.ends_with("features") && call != throwing) {
                    GivenList(call, {Feature(call, 1)});
                } else if (call != throwing) {
                    GivenList(call, {Configuration(call, "1")});
                }
            }
            Given("webui_get_uri_data").Returns(WEBUI_SUCCESS);
            TestComponent other;
            other.useCommonFeatures = 1;
            other.useCommonConfigurations = 1;
            other.Init("page");
            EXPECT_TRUE(other.WasCutShort()) << throwing;
            for (const std::string& call : calls) {
                bool loaded = false;
                const CTPP::CDT& tree =
                    call.ends_with("features") ? other.features : other.configurations;
                tree.GetExistedCDT(call, loaded);
                EXPECT_EQ(loaded, call != throwing) << call << " beside " << throwing;
            }
            const std::string transcript = recording::TranscriptText("log 3");
            EXPECT_NE(transcript.find(" - " + throwing + " failed: no list\n"), std::string::npos);
            EXPECT_NE(transcript.find(" " + throwing + " failed, returned error code 983043."),
                      std::string::npos);
        }
    }
}

TEST_F(PageComponentInitTest, HelpAddressThatThrowsStaysEmpty) {
    Given("webui_get_app_features").Returns(WEBUI_SUCCESS);
    Given("webui_get_app_configurations").Returns(WEBUI_SUCCESS);
    Given("webui_get_uri_data").Does([] { throw std::bad_alloc(); });
    component.Init("page");
    EXPECT_TRUE(component.WasCutShort());
    EXPECT_EQ(component.helpUri, "");
    EXPECT_EQ(recording::TranscriptText("log 3"),
              Lines({Log(3, Of(kInit, " - GetURI failed: std::bad_alloc"))}));
    EXPECT_EQ(recording::Transcript().back(), Log(7, Of(kInit, " - END")));
}

TEST_F(PageComponentInitTest, ListThatTheLibraryRefusesDoesNotCountAsCutShort) {
    component.useCommonFeatures = 1;
    Given("webui_get_common_features").Returns(11);
    component.Init("");
    EXPECT_FALSE(component.WasCutShort());
}

TEST_F(PageComponentInitTest, FeatureByteOf255ReadsAs255) {
    component.useCommonFeatures = 1;
    GivenList("webui_get_common_features", {Feature("Wide", 255)});
    component.GetFeatures();
    EXPECT_EQ(component.features.GetCDT("Wide").GetInt(), 255);
}

TEST_F(PageComponentInitTest, ApplicationValuesOverrideCommonOnesAndLaterRecordsEarlierOnes) {
    component.useCommonFeatures = 1;
    component.appName = "page";
    GivenList("webui_get_common_features",
              {Feature("A", 1), Feature("B", 1), Feature("B", 2), Feature("C", 3)});
    GivenList("webui_get_app_features", {Feature("A", 9)});
    component.GetFeatures();
    EXPECT_EQ(ToJson(component.features), R"({"A":9,"B":2,"C":3})");
}

TEST_F(PageComponentInitTest, SecondInitRefreshesByKeyAndKeepsKeysNoLongerReported) {
    component.useCommonConfigurations = 1;
    GivenList("webui_get_common_configurations",
              {Configuration("A", "1"), Configuration("B", "1")});
    GivenList("webui_get_common_configurations", {Configuration("A", "2")});
    component.Init("");
    component.Init("");
    EXPECT_EQ(ToJson(component.configurations), R"({"A":"2","B":"1"})");
}

TEST_F(PageComponentInitTest, NamesAndValuesThatFillTheirFieldsAreReadToTheEndOfTheField) {
    component.useCommonConfigurations = 1;
    const std::string name(50, 'n');
    const std::string value(50, 'v');
    GivenList("webui_get_common_configurations", {Configuration(name, value)});
    component.GetConfigurations();
    EXPECT_EQ(component.configurations.GetCDT(name).GetString(), value);
}

}  // namespace
