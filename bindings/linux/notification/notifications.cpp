#include "bindings/linux/notification/notifications.h"

#include <algorithm>
#include <array>
#include <span>

#include "bindings/device/notification_types.h"
#include "bindings/linux/notification/notification_record.h"
#include "bindings/linux/update/update_state.h"
#include "platform/notification.h"

namespace binding {

namespace {

/// Whether @p answer is known and has the value @p value.
template <typename T, typename Value>
bool Is(const Answer<T>& answer, Value value) {
    return answer.named && answer.error == 0 && answer.value == value;
}

bool HasReadySim(const Device& device) {
    return Is(device.getSIMStatus, SYS_SIM_READY);
}

bool IsRoaming(const Device& device, sys_roaming_e roaming) {
    const auto& stats = device.getCellularServiceStats;
    return Is(device.getCellularServiceStatus, SYS_SERVICE_AVAILABLE) && stats.error == 0 &&
           stats.value.roaming == roaming;
}

/// Whether the data call has used @p percent of the plan.
bool HasUsed(const Device& device, const Settings& settings, std::uint64_t percent) {
    const auto& stats = device.getCellularDataConnectionStats;
    if (settings.planBytes == 0 || stats.error != 0) {
        return false;
    }
    const std::uint64_t used = stats.value.bytesReceived1 + stats.value.bytesTransmitted1 +
                               stats.value.bytesReceived2 + stats.value.bytesTransmitted2;
    // Multiplying could overflow.
    return used / percent >= settings.planBytes / 100 && used != 0;
}

/// Whether the account is in the state @p status, on a device whose carrier tells of accounts.
/// Others may use the same numbers for something else.
bool HasAccount(const Device& device, sys_account_status_e status) {
    return Is(device.getPCOCarrierEnabled, 1) && Is(device.getCellularDataAccountStatus, status);
}

bool HasUpdate(const Device& device, UpdateStatus status) {
    const auto& update = device.softwareUpdateStatus;
    return update.named && update.error == 0 &&
           update.value.status == static_cast<std::int32_t>(status);
}

/// A type of notification, and the state of the device that calls for it.
struct Rule {
    const char* type;
    bool (*applies)(const Device& device, const Settings& settings);
};

constexpr std::array kRules = {
    Rule{"simPINLocked",
         [](const Device& device, const Settings&) {
             return Is(device.getSIMStatus, SYS_SIM_PIN_LOCKED);
         }},
    Rule{"simPUKLocked",
         [](const Device& device, const Settings&) {
             return Is(device.getSIMStatus, SYS_SIM_PUK_LOCKED);
         }},
    Rule{"noService",
         [](const Device& device, const Settings&) {
             return HasReadySim(device) && Is(device.getRadioEnabled, 1) &&
                    Is(device.getCellularServiceStatus, SYS_SERVICE_NONE);
         }},
    Rule{"roamingDomestic",
         [](const Device& device, const Settings&) {
             return IsRoaming(device, SYS_ROAMING_DOMESTIC);
         }},
    Rule{"roamingInternational",
         [](const Device& device, const Settings&) {
             return IsRoaming(device, SYS_ROAMING_INTERNATIONAL);
         }},
    Rule{"dataOff",
         [](const Device& device, const Settings&) {
             return HasReadySim(device) && Is(device.getCellularDataEnabled, 0);
         }},
    Rule{"data100", [](const Device& device,
                       const Settings& settings) { return HasUsed(device, settings, 100); }},
    Rule{"data90",
         [](const Device& device, const Settings& settings) {
             return HasUsed(device, settings, 90) && !HasUsed(device, settings, 100);
         }},
    Rule{"PCO3", [](const Device& device,
                    const Settings&) { return HasAccount(device, SYS_ACCOUNT_OUT_OF_CREDIT); }},
    Rule{"PCO5", [](const Device& device,
                    const Settings&) { return HasAccount(device, SYS_ACCOUNT_NOT_ACTIVE); }},
    Rule{"smsReceived",
         [](const Device& device, const Settings&) {
             return device.getSMSUnreadCount.error == 0 && device.getSMSUnreadCount.value > 0;
         }},
    Rule{"softwareUpdate",
         [](const Device& device, const Settings&) {
             return HasUpdate(device, UpdateStatus::downloading) ||
                    HasUpdate(device, UpdateStatus::installing);
         }},
    Rule{"softwareUpdateSuccess",
         [](const Device& device, const Settings&) {
             return HasUpdate(device, UpdateStatus::installed);
         }},
    Rule{"softwareUpdateFailure",
         [](const Device& device, const Settings&) {
             return HasUpdate(device, UpdateStatus::failed);
         }},
};

ClientCounts Count(const std::vector<sys_connected_device_t>& clients) {
    ClientCounts counts;
    for (const sys_connected_device_t& client : clients) {
        if (client.connectionKind == SYS_CONNECTION_WIRED_A) {
            ++counts.ethernet;
        } else if (client.connectionKind == SYS_CONNECTION_WIRED_B) {
            ++counts.usb;
        } else {
            ++counts.wifi;
        }
    }
    return counts;
}

bool IsMuted(const Settings& settings, std::string_view type) {
    const auto& muted = settings.mutedNotifications;
    return std::find(muted.begin(), muted.end(), type) != muted.end();
}

/// Whether the owner has a notification of the type @p type, which stands in place of the other.
bool IsAdded(const Settings& settings, std::string_view type) {
    const auto& all = settings.addedNotifications;
    return std::any_of(all.begin(), all.end(), [type](const AddedNotification& added) {
        return type == static_cast<const char*>(added.record.id);
    });
}

std::vector<std::byte> BlockOf(const std::vector<AnsNotificationRecord>& records) {
    const auto count = static_cast<std::int32_t>(records.size());
    const auto head = std::as_bytes(std::span(&count, 1));
    const auto body = std::as_bytes(std::span(records));
    std::vector<std::byte> block(head.begin(), head.end());
    block.insert(block.end(), body.begin(), body.end());
    return block;
}

}  // namespace

std::vector<std::string_view> NotificationsOf(const Device& device, const Settings& settings) {
    std::vector<std::string_view> types;
    for (const Rule& rule : kRules) {
        if (rule.applies(device, settings)) {
            types.emplace_back(rule.type);
        }
    }
    return types;
}

std::optional<Notifications::Time> Notifications::Publish(Device& device, const Settings& settings,
                                                          Time now, bool isComplete) {
    if (isComplete) {
        NoteClients(device, settings, now);
    }
    std::erase_if(events, [now](const Event& event) { return event.until <= now; });
    std::vector<std::string_view> types = NotificationsOf(device, settings);
    std::optional<Time> next;
    for (const Event& event : events) {
        types.push_back(event.type);
        next = next ? std::min(*next, event.until) : event.until;
    }
    std::vector<AnsNotificationRecord> records;
    for (const std::string_view name : types) {
        const NotificationType* const type = FindNotificationType(name);
        if (type != nullptr && !IsMuted(settings, name) && !IsAdded(settings, name)) {
            records.push_back(NotificationRecordOf(*type));
        }
    }
    for (const AddedNotification& added : settings.addedNotifications) {
        records.push_back(added.record);
    }
    auto& channel = device.channels[ANS_NOTIFICATION_CHANNEL];
    channel.named = true;
    channel.value = BlockOf(records);
    return next;
}

void Notifications::NoteClients(const Device& device, const Settings& settings, Time now) {
    const auto& list = device.getConnectedDeviceList;
    if (!list.named || list.error != 0) {
        return;
    }
    const ClientCounts counts = Count(list.value);
    const Time until = now + std::chrono::seconds(settings.clientNotificationSeconds);
    // Clients that were there at the start have not just come.
    if (clients) {
        if (counts.wifi > clients->wifi) {
            Begin("deviceJoinWiFi", until);
        }
        if (counts.ethernet > clients->ethernet) {
            Begin("deviceJoinEthernet", until);
        }
        if (counts.usb > clients->usb) {
            Begin("deviceJoinUSB", until);
        }
        if (counts.wifi < clients->wifi || counts.ethernet < clients->ethernet ||
            counts.usb < clients->usb) {
            Begin("deviceLeave", until);
        }
    }
    clients = counts;
}

void Notifications::Begin(std::string_view type, Time until) {
    std::erase_if(events, [type](const Event& event) { return event.type == type; });
    events.push_back({type, until});
}

}  // namespace binding
