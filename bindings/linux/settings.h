// What the owner of the board says about it: the object "linux" of the device document.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "bindings/document/node.h"
#include "platform/notification.h"

namespace binding {

struct AddedNotification {
    AnsNotificationRecord record{};

    bool operator==(const AddedNotification& other) const;
};

struct Settings {
    /// Network interfaces. The bridge connects Wi-Fi and Ethernet; empty without one.
    std::string bridge = "br0";
    std::vector<std::string> ethernet = {"eth0"};
    /// Interfaces of networks over USB.
    std::vector<std::string> usb = {"usb0"};
    /// Interfaces of hostapd, whose control sockets have these names; for the guests' networks, the
    /// first is the one at 2.4 GHz, the second the one at 5 GHz.
    std::vector<std::string> wifi = {"wlan0"};
    std::vector<std::string> guestWifi;
    std::string hostapdDirectory = "/run/hostapd";
    /// How many clients the access point serves: max_num_sta of hostapd's configuration.
    std::uint32_t wifiMaxClients = 0;
    std::string leases = "/var/lib/misc/dnsmasq.leases";

    std::string gpsdHost = "127.0.0.1";
    std::string gpsdPort = "2947";

    /// How ModemManager connects where NetworkManager does not.
    std::string apn;
    bool roamingAllowed = false;
    /// The profile of NetworkManager; empty for the first one of type gsm.
    std::string profile;

    std::string powerSupplies = "/sys/class/power_supply";
    std::string sambaUnit = "smbd.service";
    /// Folder of a block device in /sys/block; empty for the first memory card.
    std::string memoryCard;
    std::string updateSocket = "/run/swupdate/swupdateprog";

    /// Bytes of the tariff; 0 without a limit.
    std::uint64_t planBytes = 0;
    /// Types of notifications that are not shown when the state calls for them.
    std::vector<std::string> mutedNotifications;
    /// Notifications that the owner shows besides those that the state calls for.
    std::vector<AddedNotification> addedNotifications;
    /// Seconds for which a notification about a client that came or left is shown.
    std::uint32_t clientNotificationSeconds = 60;
    /// Seconds for which a wired client counts that is quiet, where no bridge says whether it is
    /// there. A bridge remembers one for as long as this.
    std::uint32_t clientQuietSeconds = 300;

    /// Seconds between two checks whether the daemons still answer, and seconds after which one
    /// that does not answer counts as silent.
    std::uint32_t checkSeconds = 60;
    std::uint32_t silenceSeconds = 10;

    bool operator==(const Settings&) const = default;
};

/// Throws ValueError.
void ReadSettings(const Node& node, Settings& settings);

}  // namespace binding
