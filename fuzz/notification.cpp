// Blocks of notifications as they are published on the message bus. The input is the block.
#include "platform/notification.h"

#include <algorithm>
#include <cstring>

#include "bindings/recording/recording.h"
#include "components/notification/notification_block.h"
#include "components/systemservice/service_api.h"
#include "components/systemservice/system_service_component.h"
#include "fuzz/answers.h"
#include "fuzz/target.h"
#include "platform/fixed_text.h"
#include "platform/sysint.h"
#include "tests/support/records.h"

namespace {

void Script(const std::string& block) {
    recording::Reset();
    const auto length = static_cast<unsigned int>(block.size());
    recording::Given("MsgbusHandler::GetData")
        .Returns(MSGBUS_BUFFER_NEEDED)
        .WritesNothing()
        .Writes(length);
    recording::Given("MsgbusHandler::GetData")
        .WritesRecords(std::vector<char>(block.begin(), block.end()))
        .Writes(length);
    GpioCustomSettings pin{};
    SetText(pin.name, "Gate %1");
    recording::Given("sys_getGpioPin1CustomSettings").Writes(pin);
    SetText(pin.lowState, "closed");
    recording::Given("sys_getGpioPin2CustomSettings").Writes(pin);
    recording::Given("sys_getSMSUnreadCount").Writes(3);
    recording::Given("sys_getMultiSimEnabled").Writes(1);
    recording::Given("webui_get_i18n_settings").Returns(WEBUI_SUCCESS).Writes(Language("de_DE"));
    SoftwareUpdateCustomMessages messages{};
    SetText(messages.description, "Version \"2\" is here.");
    recording::Given("webui_get_software_update_custom_msgs")
        .Returns(WEBUI_SUCCESS)
        .Writes(messages);
    webui_uri_data_t page{};
    SetText(page.address, "/page?a=1&b=\"2\"");
    SetText(page.titleId, "title");
    recording::Given("webui_get_uri_data").Returns(WEBUI_SUCCESS).Writes(page);
}

/// The active records that are completely in @p block, read in the simplest way, to compare with.
std::vector<AnsNotificationRecord> ActiveRecords(const std::string& block) {
    std::vector<AnsNotificationRecord> active;
    std::int32_t count = 0;
    if (block.size() >= sizeof(count)) {
        std::memcpy(&count, block.data(), sizeof(count));
    }
    std::size_t at = sizeof(count);
    for (std::int32_t i = 0; i < count && at + sizeof(AnsNotificationRecord) <= block.size(); ++i) {
        AnsNotificationRecord record{};
        std::memcpy(&record, block.data() + at, sizeof(record));
        if ((record.flags & 1U) != 0) {
            active.push_back(record);
        }
        at += sizeof(record);
    }
    return active;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string block = InputText(data, size);
    Script(block);
    SystemServiceComponent service;
    CTPP::CDT answer;
    Require(service.Dispatch(answer, SERVICE_API_NOTIFICATION) == PAGE_ERROR_NONE,
            "the notifications are always told");
    const std::vector<AnsNotificationRecord> active = ActiveRecords(block);
    const CTPP::CDT& list = answer.GetCDT("notificationsList");
    Require(list.GetType() == CTPP::CDT::ARRAY_VAL && list.Size() == active.size(),
            "each active notification is listed, and nothing else");
    for (std::uint32_t i = 0; i < list.Size(); ++i) {
        const CTPP::CDT& notification = list.GetCDT(i);
        Require(notification.Size() == 6, "a notification has six texts");
        for (const char* const key : {"id", "category", "severity", "title", "text", "label"}) {
            Require(notification.GetCDT(key).GetType() == CTPP::CDT::STRING_VAL, "it is a text",
                    key);
        }
        Require(notification.GetCDT("id").GetString() == FixedText(active.at(i).id),
                "the id is the record's");
        Require(notification.GetCDT("category").GetString() == FixedText(active.at(i).category),
                "the category is the record's");
    }
    std::string json;
    CTPP::CDT2JSON(answer, json);
    RequireJson(json);
    return 0;
}
