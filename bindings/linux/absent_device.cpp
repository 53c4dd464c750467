#include "bindings/linux/absent_device.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "bindings/linux/source.h"
#include "bindings/linux/text.h"
#include "bindings/linux/text_field.h"
#include "platform/notification.h"
#include "platform/sysint_queries.h"

namespace binding {

namespace {

constexpr int kDefaultWatchdogInterval = 60;

/// A third of the time after which the service manager thinks that the service hangs.
int WatchdogInterval() {
    const char* const text = std::getenv("WATCHDOG_USEC");
    const std::uint64_t microseconds =
        NumberIn<std::uint64_t>(text == nullptr ? "" : text).value_or(0);
    if (microseconds == 0) {
        return kDefaultWatchdogInterval;
    }
    constexpr std::uint64_t kThirdOfASecond = 3'000'000;
    return static_cast<int>(std::clamp<std::uint64_t>(microseconds / kThirdOfASecond, 1, 3600));
}

std::vector<std::byte> NoNotifications() {
    return std::vector<std::byte>(ANS_NOTIFICATION_LIST_RECORDS);
}

}  // namespace

Device AbsentDevice() {
    Device device;
#define DEVICE_NAME_ANSWER(Type, name, Meaning, field, description) device.name.named = true;
    SYSINT_QUERIES(DEVICE_NAME_ANSWER)
#undef DEVICE_NAME_ANSWER
    for (auto* const carrierSwitch :
         {&device.getWebUICarrierEnabled, &device.getSambaCarrierEnabled,
          &device.getGPSCarrierEnabled, &device.getMTSMSCarrierEnabled,
          &device.getWiFiCarrierEnabled, &device.getWiFiGuestCarrierEnabled,
          &device.getOmadmFumoCarrierEnabled}) {
        carrierSwitch->value = 1;
    }
    device.getWatchdogInterval.value = WatchdogInterval();
    device.getActiveSimSlot.value = 1;
    device.getBatteryStatus.value.detection = SYS_BATTERY_NOT_PRESENT;
    FailAll(SYS_ERROR_NO_SD_CARD, device.getSDCardInfo);
    device.getSIMCarrierGID.every.named = true;
    device.getModemMnsInfo.named = true;
    device.getCellular5GBand.named = true;
    device.getConnectedDeviceList.named = true;
    device.getWiFiGuestProfileEnabled.every.named = true;
#define DEVICE_NAME_ANSWERS(name, Subject, field, description) device.name.named = true;
    SYSINT_NAMED_QUERIES(DEVICE_NAME_ANSWERS)
#undef DEVICE_NAME_ANSWERS
    device.commonFeatures.named = true;
    device.appFeatures.named = true;
    device.commonConfigurations.named = true;
    device.appConfigurations.named = true;
    device.uriData.named = true;
    device.externalUriData.named = true;
    device.i18nSettings.named = true;
    PutText(device.i18nSettings.value.language, "en_US");
    device.softwareUpdateStatus.named = true;
    device.softwareInstallationDuration.named = true;
    device.softwareUpdateCustomMsgs.named = true;
    Tell(device.channels[ANS_NOTIFICATION_CHANNEL], NoNotifications());
    return device;
}

}  // namespace binding
