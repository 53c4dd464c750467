#include "components/systemservice/gpio_text.h"

#include <span>
#include <string_view>

#include "framework/log.h"
#include "framework/text_domain.h"
#include "platform/fixed_text.h"
#include "platform/sysint.h"

namespace {

/// A change of a pin's state, and the ids of its texts. Which one is used depends on what the user
/// has given a name.
struct PinChange {
    std::string_view type;
    char (GpioCustomSettings::*state)[64];
    const char* nothingNamedId;
    const char* onlyStateNamedId;
    const char* onlyPinNamedId;
};

constexpr PinChange kPin1Changes[] = {
    {"gpioPin1StateChangeToLow", &GpioCustomSettings::lowState,
     "notification_gpio_pin1_state_change_to_low_text",
     "notification_gpio_pin1_state_change_to_low_only_state_name_present_text",
     "notification_gpio_pin1_state_change_to_low_only_gpio_name_present_text"},
    {"gpioPin1StateChangeToHigh", &GpioCustomSettings::highState,
     "notification_gpio_pin1_state_change_to_high_text",
     "notification_gpio_pin1_state_change_to_high_only_state_name_present_text",
     "notification_gpio_pin1_state_change_to_high_only_gpio_name_present_text"},
};

constexpr PinChange kPin2Changes[] = {
    {"gpioPin2StateChangeToLow", &GpioCustomSettings::lowState,
     "notification_gpio_pin2_state_change_to_low_text",
     "notification_gpio_pin2_state_change_to_low_only_state_name_present_text",
     "notification_gpio_pin2_state_change_to_low_only_gpio_name_present_text"},
    {"gpioPin2StateChangeToHigh", &GpioCustomSettings::highState,
     "notification_gpio_pin2_state_change_to_high_text",
     "notification_gpio_pin2_state_change_to_high_only_state_name_present_text",
     "notification_gpio_pin2_state_change_to_high_only_gpio_name_present_text"},
};

std::string ChangeText(const PinChange& change, const GpioCustomSettings& settings) {
    const std::string pin = FixedText(settings.name);
    const std::string state = FixedText(settings.*change.state);
    if (pin.empty() && state.empty()) {
        return Translated(change.nothingNamedId);
    }
    if (pin.empty()) {
        return Translated(change.onlyStateNamedId) + state;
    }
    if (state.empty()) {
        return pin + Translated(change.onlyPinNamedId);
    }
    return pin + " " + state;
}

std::string PinText(std::span<const PinChange> changes, const GpioCustomSettings& settings,
                    std::string_view type) {
    for (const PinChange& change : changes) {
        if (type == change.type) {
            return ChangeText(change, settings);
        }
    }
    return "";
}

std::string ReadPin1Text(const char* signature, const std::string& type) {
    GpioCustomSettings settings{};
    const int result = sys_getGpioPin1CustomSettings(&settings);
    if (result != SYS_SUCCESS) {
        KESTAL_FAILURE(
            "sys_getGpioPin1CustomSettings failed with error code: %d, try sysintcli "
            "getGpioPin1CustomSettings from command line.",
            result);
        return "";
    }
    return PinText(kPin1Changes, settings, type);
}

std::string ReadPin2Text(const char* signature, const std::string& type) {
    GpioCustomSettings settings{};
    const int result = sys_getGpioPin2CustomSettings(&settings);
    if (result != SYS_SUCCESS) {
        KESTAL_FAILURE(
            "sys_getGpioPin2CustomSettings failed with error code: %d, try sysintcli "
            "getGpioPin2CustomSettings from command line.",
            result);
        return "";
    }
    return PinText(kPin2Changes, settings, type);
}

}  // namespace

std::string ReadGpioText(const char* signature, const std::string& type) {
    std::string text = ReadPin1Text(signature, type);
    text += ReadPin2Text(signature, type);
    return text;
}
