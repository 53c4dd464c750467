#include <string>
#include <utility>

#include "tests/unit/components/systemservice/notification_list_test.h"

using recording::CallCount;
using recording::Given;
using recording::Log;
using recording::TranscriptText;
using translations::Give;

namespace {

void GivenPage(std::string_view address, std::string_view titleId) {
    webui_uri_data_t data{};
    SetText(data.address, address);
    SetText(data.titleId, titleId);
    Given(kPageCall).Returns(WEBUI_SUCCESS).Writes(data);
}

class NotificationLinksTest : public testing::Test {
  protected:
    void SetUp() override {
        recording::Reset();
        translations::Reset();
        Give("webui", "webui_app_turnon_text", "Turn on");
        Give("webui", "system_services_view_link_text", "View ");
        Give("webui", "webui_view_messages_link_text", "Read");
        Give("webui", "webui_app_goto_text", "Go to ");
        Give("webui", "webui_unlock_sim_text", "Unlock");
        Give("webui", "webui_set_apn_text", "Set APN");
        Give("webui", "webui_change_tech_preference_text", "Change technology");
        Give("webui", "webui_install_now_text", "Install");
        Give("webui", "webui_click_here_text", "Click");
        Give("webui", "webui_app_dot_text", ".");
        Give("webui", "system_service_extra_text", " Extra");
        Give("webui", "page_title", "Title");
    }

    std::string Link(const std::string& type) {
        std::string text;
        component.GetSupplementaryTextForNotification(type, text);
        return text;
    }

    SystemServiceComponent component;
};

TEST_F(NotificationLinksTest, EachTypeLinksToItsPage) {
    const struct {
        std::string type;
        std::string pageId;
        std::string link;
    } cases[] = {
        {"dataOff", "wwan_settings", R"(<a href="/page">Turn on</a>)"},
        {"deviceJoinWiFi", "connected_devices", R"(<a href="/page">View Title.</a>)"},
        {"deviceJoinUSB", "connected_devices", R"(<a href="/page">View Title.</a>)"},
        {"deviceJoinEthernet", "connected_devices", R"(<a href="/page">View Title.</a>)"},
        {"deviceLeave", "connected_devices", R"(<a href="/page">View Title.</a>)"},
        {"smsReceived", "sms", R"(<a href="/page">Read.</a>)"},
        {"data90", "data_usage", R"(<a href="/page">View Title.</a>)"},
        {"data100", "data_usage", R"(<a href="/page">View Title.</a>)"},
        {"simNonQKT", "wwan_settings", R"(<a href="/page">Set APN.</a> Extra)"},
        {"noService", "wwan_settings", R"(<a href="/page">Change technology.</a> Extra)"},
        {"softwareUpdate", "software_update", R"(<a href="/page">Install.</a> Extra)"},
        {"PCO3", "pco", R"(<a href="/page">Click.</a> Extra)"},
        {"PCO5", "pco", R"(<a href="/page">Click.</a> Extra)"},
    };
    for (const auto& [type, pageId, link] : cases) {
        recording::Reset();
        GivenPage("/page", "page_title");
        EXPECT_EQ(Link(type), link) << type;
        EXPECT_EQ(TranscriptText(),
                  Steps({Log(7, kGetLink + " - BEGIN"), Log(7, kGetPage + " - BEGIN"),
                         kPageCall + "(" + pageId + ")",
                         Log(7, kGetPage + " - page id is " + pageId +
                                    ", url is /page and url title is Title"),
                         Log(7, kGetPage + " - END"), Log(7, kGetLink + " - END")}))
            << type;
    }
}

TEST_F(NotificationLinksTest, TextsThatAreNotTranslatedAreShownAsTheyAre) {
    translations::Reset();
    GivenPage("/page", "page_title");
    EXPECT_EQ(Link("dataOff"), R"(<a href="/page">webui_app_turnon_text</a>)");
    EXPECT_EQ(Link("deviceLeave"),
              R"(<a href="/page">system_services_view_link_textpage_titlewebui_app_dot_text</a>)");
    EXPECT_EQ(Link("PCO3"), R"(<a href="/page">webui_click_here_textwebui_app_dot_text</a>)"
                            "system_service_extra_text");
}

TEST_F(NotificationLinksTest, ActivationLinksToTheCarriersPortalWithoutALookup) {
    const std::string portal = KESTAL_ACTIVATION_URL;
    EXPECT_EQ(Link("uiccLaunchBrowser"), "<a href=\"" + portal + "\">Go to " + portal + ".</a>");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kGetLink + " - BEGIN"), Log(7, kGetLink + " - END")}));
}

TEST_F(NotificationLinksTest, LockedSimLinksToThePageOfTheSimOrOfTheSims) {
    const std::pair<int, std::string> cases[] = {
        {1, "sim_manager"}, {0, "sim"}, {2, "sim"}, {-1, "sim"}};
    for (const std::string type : {"simPINLocked", "simPUKLocked"}) {
        for (const auto& [enabled, pageId] : cases) {
            recording::Reset();
            Given(kMultiSimCall).Writes(enabled);
            GivenPage("/page", "page_title");
            EXPECT_EQ(Link(type), R"(<a href="/page">Unlock.</a> Extra)") << enabled;
            EXPECT_EQ(TranscriptText(),
                      Steps({Log(7, kGetLink + " - BEGIN"), kMultiSimCall + "()",
                             Log(7, kGetPage + " - BEGIN"), kPageCall + "(" + pageId + ")",
                             Log(7, kGetPage + " - page id is " + pageId +
                                        ", url is /page and url title is Title"),
                             Log(7, kGetPage + " - END"), Log(7, kGetLink + " - END")}))
                << enabled;
        }
    }
}

TEST_F(NotificationLinksTest, SwitchThatIsNotWrittenMeansOneSim) {
    Given(kMultiSimCall);
    GivenPage("/page", "page_title");
    Link("simPINLocked");
    EXPECT_EQ(TranscriptText(kPageCall), Steps({kPageCall + "(sim)"}));
}

TEST_F(NotificationLinksTest, LockedSimHasNoLinkWhenItIsNotKnownWhetherThereAreSeveral) {
    for (const std::string type : {"simPINLocked", "simPUKLocked"}) {
        recording::Reset();
        Given(kMultiSimCall).Returns(1).Writes(1);
        GivenPage("/page", "page_title");
        EXPECT_EQ(Link(type), "");
        EXPECT_EQ(TranscriptText(), Steps({Log(7, kGetLink + " - BEGIN"), kMultiSimCall + "()",
                                           Log(7, kGetLink + " - END")}));
    }
}

TEST_F(NotificationLinksTest, OtherTypesHaveNoLinkAndAskNothing) {
    for (const std::string type :
         {"roamingDomestic", "roamingInternational", "softwareUpdateSuccess",
          "softwareUpdateFailure", "gpioPin1StateChangeToLow", "", "other"}) {
        recording::Reset();
        GivenPage("/page", "page_title");
        EXPECT_EQ(Link(type), "") << type;
        EXPECT_EQ(TranscriptText(),
                  Steps({Log(7, kGetLink + " - BEGIN"), Log(7, kGetLink + " - END")}));
    }
}

TEST_F(NotificationLinksTest, TypesAreComparedWholeAndCaseSensitively) {
    GivenPage("/page", "page_title");
    Given(kMultiSimCall);
    for (const std::string type :
         {"dataoff", "DataOff", "dataOff ", " dataOff", "dataOf", "dataOff1", "data9", "data1000",
          "pco3", "PCO", "PCO4", "deviceJoin", "simpinlocked", "smsreceived", "simNonqkt",
          "uicclaunchbrowser", "noservice"}) {
        EXPECT_EQ(Link(type), "") << type;
    }
    EXPECT_EQ(CallCount(kPageCall), 0U);
    EXPECT_EQ(CallCount(kMultiSimCall), 0U);
}

TEST_F(NotificationLinksTest, PageThatIsNotFoundHasNoLinkEvenWhereASentenceWouldFollow) {
    webui_uri_data_t data{};
    SetText(data.address, "/page");
    const std::pair<std::string, std::string> types[] = {
        {"dataOff", "wwan_settings"}, {"softwareUpdate", "software_update"}, {"PCO5", "pco"}};
    for (const auto& [type, pageId] : types) {
        for (const int status : {0, 1, 983039, 983041, -1}) {
            recording::Reset();
            Given(kPageCall).Returns(status).Writes(data);
            EXPECT_EQ(Link(type), "") << type;
            EXPECT_EQ(TranscriptText(),
                      Steps({Log(7, kGetLink + " - BEGIN"), Log(7, kGetPage + " - BEGIN"),
                             kPageCall + "(" + pageId + ")", Log(7, kGetPage + " - END"),
                             Log(7, kGetLink + " - END")}));
        }
    }
}

TEST_F(NotificationLinksTest, PageOfOneLinkIsNotThatOfTheNext) {
    GivenPage("/page", "page_title");
    Given(kPageCall).Returns(WEBUI_SUCCESS);
    EXPECT_EQ(Link("dataOff"), R"(<a href="/page">Turn on</a>)");
    EXPECT_EQ(Link("dataOff"), "");
}

TEST_F(NotificationLinksTest, PageWithoutAddressHasNoLink) {
    GivenPage("", "page_title");
    EXPECT_EQ(Link("softwareUpdate"), "");
    EXPECT_EQ(Link("deviceLeave"), "");
}

TEST_F(NotificationLinksTest, WordingOfTheWholeLinkTextIsLookedUpOnceMore) {
    GivenPage("/page", "page_title");
    Give("webui", "View Title.", "See the devices!");
    Give("webui", "Install.", "Install it!");
    Give("webui", "Turn on", "Switch on");
    EXPECT_EQ(Link("deviceLeave"), R"(<a href="/page">See the devices!</a>)");
    EXPECT_EQ(Link("softwareUpdate"), R"(<a href="/page">Install it!</a> Extra)");
    EXPECT_EQ(Link("dataOff"), R"(<a href="/page">Switch on</a>)");
}

TEST_F(NotificationLinksTest, OnlyTheLinkTextIsLookedUpTwice) {
    GivenPage("/page", "page_title");
    Give("webui", " Extra", "wrong");
    Give("webui", "Title", "wrong");
    Give("webui", "/page", "wrong");
    EXPECT_EQ(Link("softwareUpdate"), R"(<a href="/page">Install.</a> Extra)");
    EXPECT_EQ(Link("data90"), R"(<a href="/page">View Title.</a>)");
}

TEST_F(NotificationLinksTest, NothingIsEscaped) {
    GivenPage("/page?a=1&b=<2>", "page_title");
    Give("webui", "page_title", "<b>A & B</b>");
    EXPECT_EQ(Link("data100"), R"(<a href="/page?a=1&b=<2>">View <b>A & B</b>.</a>)");
}

TEST_F(NotificationLinksTest, LinkIsAppended) {
    GivenPage("/page", "page_title");
    std::string text = "before ";
    component.GetSupplementaryTextForNotification("dataOff", text);
    EXPECT_EQ(text, R"(before <a href="/page">Turn on</a>)");
    component.GetSupplementaryTextForNotification("roamingDomestic", text);
    EXPECT_EQ(text, R"(before <a href="/page">Turn on</a>)");
}

TEST_F(NotificationLinksTest, PageThatIsNotFoundLeavesAddressAndTitleAsTheyWere) {
    std::string url = "url";
    std::string title = "title";
    Given(kPageCall).Returns(5);
    component.GetPageUrlData("sms", url, title);
    EXPECT_EQ(url, "url");
    EXPECT_EQ(title, "title");
    EXPECT_EQ(TranscriptText(), Steps({Log(7, kGetPage + " - BEGIN"), kPageCall + "(sms)",
                                       Log(7, kGetPage + " - END")}));
}

TEST_F(NotificationLinksTest, PageThatIsFoundReplacesAddressAndTitle) {
    std::string url = "url";
    std::string title = "title";
    GivenPage("/sms", "sms_title");
    component.GetPageUrlData("sms", url, title);
    EXPECT_EQ(url, "/sms");
    EXPECT_EQ(title, "sms_title");
}

TEST_F(NotificationLinksTest, AddressAndTitleWithoutTerminatorEndWithTheirField) {
    std::string url;
    std::string title;
    GivenPage(std::string(256, 'u'), std::string(128, 't'));
    component.GetPageUrlData("sms", url, title);
    EXPECT_EQ(url, std::string(256, 'u'));
    EXPECT_EQ(title, std::string(128, 't'));
}

}  // namespace
