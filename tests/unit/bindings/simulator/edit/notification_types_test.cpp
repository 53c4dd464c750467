// The fields of a notification of each type.
#include "bindings/simulator/edit/notification_types.h"

#include <gtest/gtest.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "tests/unit/bindings/document/document_reading.h"

namespace {

using json = nlohmann::ordered_json;
using binding::MakeNotification;
using binding::NotificationTypeNames;

TEST(NotificationTypes, HaveAllTextsThatAPageShows) {
    EXPECT_EQ(MakeNotification("deviceJoinWiFi", {}).dump(),
              R"({"id":"deviceJoinWiFi","category":"devices","severity":"info",)"
              R"("labelId":"notification_category_devices_label",)"
              R"("titleId":"notification_device_join_wifi_title",)"
              R"("textId":"notification_device_join_wifi_text"})");
}

TEST(NotificationTypes, ShareTheTextOfThePins) {
    const json notification = MakeNotification("gpioPin2StateChangeToHigh", {});
    EXPECT_EQ(notification["titleId"], "notification_gpio_pin2_title");
    EXPECT_EQ(notification["textId"], "notification_gpio_message_text");
}

TEST(NotificationTypes, FieldsCanBeOverridden) {
    EXPECT_EQ(MakeNotification("PCO3", {.category = "a",
                                        .severity = std::make_shared<json>(7),
                                        .labelId = "b",
                                        .titleId = "c",
                                        .textId = "d",
                                        .active = false})
                  .dump(),
              R"({"id":"PCO3","category":"a","severity":7,"labelId":"b","titleId":"c",)"
              R"("textId":"d","active":false})");
}

TEST(NotificationTypes, EachIsAcceptedByTheReader) {
    const std::vector<std::string> names = NotificationTypeNames();
    EXPECT_EQ(names.size(), 24U);
    for (const std::string& name : names) {
        EXPECT_EQ(ChannelComplaint(json::array({MakeNotification(name, {})}).dump()), "") << name;
    }
}

TEST(NotificationTypes, AnUnknownTypeNeedsAllFields) {
    const std::string message =
        "there is no type of notification 'dataOf', and for one of your own these are missing: "
        "titleId, textId; did you mean dataOff?";
    try {
        MakeNotification("dataOf", {.category = "a",
                                    .severity = std::make_shared<json>(0),
                                    .labelId = "b",
                                    .titleId = std::nullopt,
                                    .textId = std::nullopt});
        ADD_FAILURE();
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(), message);
    }
    EXPECT_EQ(MakeNotification("dataOf", {.category = "a",
                                          .severity = std::make_shared<json>(0),
                                          .labelId = "b",
                                          .titleId = "c",
                                          .textId = "d"})["textId"],
              "d");
}

}  // namespace
