#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "bindings/recording/recording.h"
#include "components/systemservice/system_service_component.h"
#include "platform/sysint.h"
#include "tests/support/json.h"
#include "tests/support/records.h"
#include "tests/support/transcript.h"
#include "tests/support/translations.h"

/// The signature that all code for the list of notifications logs under.
inline constexpr const char* kListSignature =
    "PageError SystemServiceComponent::GetNotificationStatus(CTPP::CDT&)";
inline const std::string kGetList = std::string(" - ") + kListSignature;
inline const std::string kGetLink =
    " - void SystemServiceComponent::GetSupplementaryTextForNotification(const string&, "
    "std::__cxx11::string&)";
inline const std::string kGetPage =
    " - void SystemServiceComponent::GetPageUrlData(const string&, std::__cxx11::string&, "
    "std::__cxx11::string&)";

inline const std::string kPin1Call = "sys_getGpioPin1CustomSettings";
inline const std::string kPin2Call = "sys_getGpioPin2CustomSettings";
inline const std::string kUnreadCall = "sys_getSMSUnreadCount";
inline const std::string kLanguageCall = "webui_get_i18n_settings";
inline const std::string kMessagesCall = "webui_get_software_update_custom_msgs";
inline const std::string kPageCall = "webui_get_uri_data";
inline const std::string kMultiSimCall = "sys_getMultiSimEnabled";

inline const std::string kNoNotifications = R"({"notificationsList":[]})";

/// An active notification of the type @p id whose text is the message @p textId.
inline AnsNotificationRecord NotificationWithText(std::string_view id, std::string_view textId) {
    AnsNotificationRecord record = Notification(id);
    SetText(record.textId, textId);
    return record;
}

/// A component and a device that publishes notifications.
class NotificationListTest : public testing::Test {
  protected:
    void SetUp() override {
        translations::Reset();
        StartRequest();
    }

    /// Clears transcript and script. The pins have no names and @p unread messages are unread.
    static void StartRequest(int unread = 0) {
        recording::Reset();
        recording::Given(kPin1Call);
        recording::Given(kPin2Call);
        recording::Given(kUnreadCall).Writes(unread);
    }

    static void Publish(const std::vector<std::byte>& block) {
        const auto size = static_cast<unsigned int>(block.size());
        const std::string call = "MsgbusHandler::GetData";
        recording::Given(call).Returns(MSGBUS_BUFFER_NEEDED).WritesNothing().Writes(size);
        recording::Given(call).WritesRecords(block);
    }

    static void Publish(const std::vector<AnsNotificationRecord>& records) {
        Publish(NotificationList(records));
    }

    /// Asks for the list; returns the answer as the client sees it.
    std::string Json() {
        out = CTPP::CDT();
        EXPECT_EQ(component.GetNotificationStatus(out), PAGE_ERROR_NONE);
        return ToJson(out);
    }

    /// The same with @p records published.
    std::string Json(const std::vector<AnsNotificationRecord>& records) {
        Publish(records);
        return Json();
    }

    /// The only notification of the list if @p record alone is published.
    CTPP::CDT Only(const AnsNotificationRecord& record) {
        Json({record});
        const CTPP::CDT& list = out.GetCDT("notificationsList");
        EXPECT_EQ(list.Size(), 1U);
        return list.Size() == 1 ? list.GetCDT(0) : CTPP::CDT();
    }

    std::string TextOf(const AnsNotificationRecord& record) {
        return Only(record).GetCDT("text").GetString();
    }

    SystemServiceComponent component;
    CTPP::CDT out;
};
