#include "components/systemservice/gpio_text.h"

#include "tests/unit/components/systemservice/notification_list_test.h"

using recording::Given;
using recording::TranscriptText;
using translations::Give;

namespace {

GpioCustomSettings Names(std::string_view pin, std::string_view low, std::string_view high) {
    GpioCustomSettings settings{};
    SetText(settings.name, pin);
    SetText(settings.lowState, low);
    SetText(settings.highState, high);
    return settings;
}

/// A change of a pin and the names of its messages.
struct Change {
    std::string type;
    std::string call;
    bool low;
    std::string nothingNamed;
    std::string onlyStateNamed;
    std::string onlyPinNamed;
};

const Change kChanges[] = {
    {"gpioPin1StateChangeToLow", kPin1Call, true, "notification_gpio_pin1_state_change_to_low_text",
     "notification_gpio_pin1_state_change_to_low_only_state_name_present_text",
     "notification_gpio_pin1_state_change_to_low_only_gpio_name_present_text"},
    {"gpioPin1StateChangeToHigh", kPin1Call, false,
     "notification_gpio_pin1_state_change_to_high_text",
     "notification_gpio_pin1_state_change_to_high_only_state_name_present_text",
     "notification_gpio_pin1_state_change_to_high_only_gpio_name_present_text"},
    {"gpioPin2StateChangeToLow", kPin2Call, true, "notification_gpio_pin2_state_change_to_low_text",
     "notification_gpio_pin2_state_change_to_low_only_state_name_present_text",
     "notification_gpio_pin2_state_change_to_low_only_gpio_name_present_text"},
    {"gpioPin2StateChangeToHigh", kPin2Call, false,
     "notification_gpio_pin2_state_change_to_high_text",
     "notification_gpio_pin2_state_change_to_high_only_state_name_present_text",
     "notification_gpio_pin2_state_change_to_high_only_gpio_name_present_text"},
};

class GpioTextTest : public testing::Test {
  protected:
    void SetUp() override {
        recording::Reset();
        translations::Reset();
    }

    /// The text of @p change when the user has given these names to pin and state. The other state
    /// and the other pin have names as well, which must not appear.
    static std::string Text(const Change& change, std::string_view pin, std::string_view state) {
        recording::Reset();
        for (const std::string& call : {kPin1Call, kPin2Call}) {
            if (call != change.call) {
                Given(call).Writes(Names("Other", "other low", "other high"));
            } else if (change.low) {
                Given(call).Writes(Names(pin, state, "other state"));
            } else {
                Given(call).Writes(Names(pin, "other state", state));
            }
        }
        return ReadGpioText(kListSignature, change.type);
    }
};

TEST_F(GpioTextTest, WithoutNamesTheMessageOfThePinIsUsed) {
    for (const Change& change : kChanges) {
        EXPECT_EQ(Text(change, "", ""), change.nothingNamed);
        Give("webui", change.nothingNamed, "Pin changed");
        EXPECT_EQ(Text(change, "", ""), "Pin changed");
    }
}

TEST_F(GpioTextTest, NamesOfOneReadingAreNotThoseOfTheNext) {
    for (const Change& change : kChanges) {
        EXPECT_EQ(Text(change, "Door", "Open"), "Door Open");
        recording::Reset();
        Given(kPin1Call);
        Given(kPin2Call);
        EXPECT_EQ(ReadGpioText(kListSignature, change.type), change.nothingNamed);
    }
}

TEST_F(GpioTextTest, NameOfTheStateAloneFollowsItsMessageDirectly) {
    for (const Change& change : kChanges) {
        EXPECT_EQ(Text(change, "", "Open"), change.onlyStateNamed + "Open");
        Give("webui", change.onlyStateNamed, "Pin is:");
        EXPECT_EQ(Text(change, "", "Open"), "Pin is:Open");
    }
}

TEST_F(GpioTextTest, NameOfThePinAloneIsFollowedByItsMessageDirectly) {
    for (const Change& change : kChanges) {
        EXPECT_EQ(Text(change, "Door", ""), "Door" + change.onlyPinNamed);
        Give("webui", change.onlyPinNamed, " changed");
        EXPECT_EQ(Text(change, "Door", ""), "Door changed");
    }
}

TEST_F(GpioTextTest, BothNamesAreJoinedByOneBlankAndNotTranslated) {
    Give("webui", "Door", "translated");
    Give("webui", "Open", "translated");
    for (const Change& change : kChanges) {
        EXPECT_EQ(Text(change, "Door", "Open"), "Door Open");
    }
}

TEST_F(GpioTextTest, NamesWithoutTerminatorEndWithTheirField) {
    for (const Change& change : kChanges) {
        EXPECT_EQ(Text(change, std::string(64, 'p'), std::string(64, 's')),
                  std::string(64, 'p') + " " + std::string(64, 's'));
    }
}

TEST_F(GpioTextTest, BothPinsAreReadInOrderWhateverTheType) {
    for (const std::string type :
         {"gpioPin1StateChangeToLow", "gpioPin2StateChangeToHigh", "dataOff", ""}) {
        recording::Reset();
        Given(kPin1Call);
        Given(kPin2Call);
        ReadGpioText(kListSignature, type);
        EXPECT_EQ(TranscriptText(), Steps({kPin1Call + "()", kPin2Call + "()"})) << type;
    }
}

TEST_F(GpioTextTest, OtherTypesHaveNoText) {
    Given(kPin1Call).Writes(Names("Door", "Closed", "Open"));
    Given(kPin2Call).Writes(Names("Door", "Closed", "Open"));
    for (const std::string type :
         {"dataOff", "", "gpiopin1statechangetolow", "gpioPin1StateChangeToLow ",
          "gpioPin1StateChangeTo", "gpioPin3StateChangeToLow"}) {
        EXPECT_EQ(ReadGpioText(kListSignature, type), "") << type;
    }
}

using GpioTextInTheListTest = NotificationListTest;

TEST_F(GpioTextInTheListTest, NamesOfPinAndStateReachTheText) {
    Give("webui", "t", "State: %4");
    recording::Reset();
    Given(kPin1Call);
    Given(kPin2Call).Writes(Names("Door", "Closed", "Open"));
    EXPECT_EQ(TextOf(NotificationWithText("gpioPin2StateChangeToHigh", "t")), "State: Door Open");
}

TEST_F(GpioTextInTheListTest, PlaceholdersInANameStayAsTheyAre) {
    Give("webui", "t", "%1 %4 %3");
    Give("webui", "webui_product_name", "Kestal");
    recording::Reset();
    Given(kPin1Call).Writes(Names("%1%3", "%4", ""));
    Given(kPin2Call);
    Given(kUnreadCall).Writes(2);
    EXPECT_EQ(TextOf(NotificationWithText("gpioPin1StateChangeToLow", "t")), "Kestal %1%3 %4 2");
}

}  // namespace
