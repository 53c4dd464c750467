// Defaults, page addresses and configuration values.
#include "framework/page_component.h"

#include <gtest/gtest.h>

#include "bindings/recording/recording.h"
#include "platform/webui.h"
#include "tests/support/json.h"
#include "tests/support/records.h"
#include "tests/support/transcript.h"
#include "tests/support/vtable.h"

using recording::Failure;
using recording::Given;
using recording::Lines;
using recording::Log;

namespace {

class TestComponent : public PageComponent {
  public:
    using PageComponent::configurations;
};

class PageComponentTest : public testing::Test {
  protected:
    void SetUp() override { recording::Reset(); }

    TestComponent component;
};

TEST_F(PageComponentTest, DefaultOperationsAreHarmlessAndSilent) {
    CTPP::CDT in;
    CTPP::CDT out;
    CTPP::CDT errors;
    EXPECT_EQ(component.Hook0(out, in), 0);
    EXPECT_EQ(component.GetDynamicData(out, in), PAGE_ERROR_NONE);
    EXPECT_EQ(component.Hook2(out, in), 0);
    component.Hook3(out, in);
    EXPECT_EQ(component.ValidateFormData(in, out), 0);
    EXPECT_EQ(component.Hook5(out, in, errors), 0);
    EXPECT_EQ(component.StoreData(in, out), PAGE_ERROR_NONE);
    EXPECT_EQ(out.GetType(), CTPP::CDT::UNDEF);
    EXPECT_EQ(recording::TranscriptText(), "");
}

#if defined(__x86_64__) || defined(__i386__)
// Components outside this service rely on these positions.
TEST_F(PageComponentTest, VirtualOperationsKeepTheirSlots) {
    EXPECT_EQ(Slot(&PageComponent::Hook0), 0U);
    EXPECT_EQ(Slot(&PageComponent::GetDynamicData), 1U);
    EXPECT_EQ(Slot(&PageComponent::Hook2), 2U);
    EXPECT_EQ(Slot(&PageComponent::Hook3), 3U);
    EXPECT_EQ(Slot(&PageComponent::ValidateFormData), 4U);
    EXPECT_EQ(Slot(&PageComponent::Hook5), 5U);
    EXPECT_EQ(Slot(&PageComponent::StoreData), 6U);
}
#endif

TEST_F(PageComponentTest, UriIsTheFriendlyAddressOfThePage) {
    webui_uri_data_t data{};
    SetText(data.address, "/settings/network");
    SetText(data.titleId, "title");
    Given("webui_get_uri_data").Returns(WEBUI_SUCCESS).Writes(data);
    EXPECT_EQ(component.GetURI("wwan_settings"), "/settings/network");
    const std::string signature =
        " - std::__cxx11::string PageComponent::GetURI(const char*) const";
    EXPECT_EQ(
        recording::TranscriptText(),
        Lines({Log(7, signature + " - BEGIN"), "webui_get_uri_data(wwan_settings)",
               Log(7, signature + " Friendly uri : /settings/network for uri_id wwan_settings"),
               Log(7, signature + " - END returning /settings/network")}));
}

TEST_F(PageComponentTest, UriWithoutTerminatorEndsWithItsField) {
    webui_uri_data_t data{};
    SetText(data.address, std::string(256, 'a'));
    SetText(data.titleId, "title");
    Given("webui_get_uri_data").Returns(WEBUI_SUCCESS).Writes(data);
    EXPECT_EQ(component.GetURI("page"), std::string(256, 'a'));
}

TEST_F(PageComponentTest, ExternalUriIsReadAtItsOffset) {
    webui_external_uri_data_t data{};
    SetText(data.reserved, "not the address");
    SetText(data.address, "https://example.com/");
    Given("webui_get_external_uri_data").Returns(WEBUI_SUCCESS).Writes(data);
    EXPECT_EQ(component.GetExternalURI("store"), "https://example.com/");
    const std::string signature =
        " - std::__cxx11::string PageComponent::GetExternalURI(const char*) const";
    EXPECT_EQ(recording::TranscriptText(),
              Lines({Log(7, signature + " - BEGIN"), "webui_get_external_uri_data(store)",
                     Log(7, signature + " Friendly uri : https://example.com/ for uri_id store\n"),
                     Log(7, signature + " - END returning https://example.com/")}));
}

TEST_F(PageComponentTest, ExternalUriThatFailsIsEmptyAndItsLinesEndInALineFeed) {
    Given("webui_get_external_uri_data").Returns(31);
    EXPECT_EQ(component.GetExternalURI("store"), "");
    const std::string signature =
        " - std::__cxx11::string PageComponent::GetExternalURI(const char*) const";
    EXPECT_EQ(recording::TranscriptText(),
              Steps({Log(7, signature + " - BEGIN"), "webui_get_external_uri_data(store)",
                     Failure(signature +
                             " webui_get_external_uri_data failed, returned error code 31. Try "
                             "webui_cli get_external_uri_data from command line.\n"),
                     Log(7, signature + " - END returning ")}));
}

TEST_F(PageComponentTest, ConfigurationNumberIsAbsentWhenNothingWasLoaded) {
    EXPECT_EQ(component.ConfigurationNumber("ShowRoamingIndicator"), std::nullopt);
}

TEST_F(PageComponentTest, ConfigurationNumberIsAbsentForAnotherName) {
    component.configurations["Other"] = "1";
    EXPECT_EQ(component.ConfigurationNumber("ShowRoamingIndicator"), std::nullopt);
    EXPECT_EQ(ToJson(component.configurations), R"({"Other":"1"})");
}

TEST_F(PageComponentTest, ConfigurationNumberIsTheNumberOfTheText) {
    component.configurations["One"] = "1";
    component.configurations["Text"] = "yes";
    component.configurations["Empty"] = "";
    EXPECT_EQ(component.ConfigurationNumber("One"), 1);
    EXPECT_EQ(component.ConfigurationNumber("Text"), 0);
    EXPECT_EQ(component.ConfigurationNumber("Empty"), 0);
}

}  // namespace
