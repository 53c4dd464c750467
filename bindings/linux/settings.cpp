#include "bindings/linux/settings.h"

#include <net/if.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <nlohmann/json.hpp>

#include "bindings/device/notification_types.h"
#include "bindings/document/device_reader.h"
#include "bindings/linux/notification/notification_record.h"

namespace binding {

namespace {

/// Whether @p text can go into a log, and to functions whose texts end with a zero.
bool IsPlain(const std::string& text) {
    return std::none_of(text.begin(), text.end(), [](unsigned char character) {
        return character < ' ' || character == '\x7F';
    });
}

void ReadName(const Node& node, std::string& name) {
    const std::string* const text = node.Text();
    if (text == nullptr) {
        node.Expected("a text");
    }
    if (!IsPlain(*text)) {
        node.Expected("a text without control characters", "such");
    }
    name = *text;
}

void ReadPath(const Node& node, std::string& path) {
    ReadName(node, path);
    const bool isFile = path.size() > 1 && path.front() == '/' && path.back() != '/';
    if (!isFile || path.size() >= PATH_MAX) {
        node.Expected("an absolute path", "\"" + path + "\"");
    }
}

/// The name of an entry of a folder, such as that of a network interface in /sys/class/net.
void ReadEntry(const Node& node, std::size_t most, std::string& name) {
    ReadName(node, name);
    if (name.empty() || name.size() > most || name == "." || name == ".." ||
        name.find('/') != std::string::npos) {
        node.Expected("a name of at most " + std::to_string(most) + " bytes without slashes",
                      "\"" + name + "\"");
    }
}

void ReadInterface(const Node& node, std::string& name) {
    ReadEntry(node, IFNAMSIZ - 1, name);
}

void ReadBridge(const Node& node, std::string& name) {
    if (node.Text() == nullptr || !node.Text()->empty()) {
        ReadInterface(node, name);
    } else {
        name.clear();
    }
}

void ReadCard(const Node& node, std::string& name) {
    if (node.Text() == nullptr || !node.Text()->empty()) {
        ReadEntry(node, NAME_MAX, name);
    } else {
        name.clear();
    }
}

/// Reads a list, each element of which costs something while the service runs.
template <typename Value>
void ReadList(const Node& node, std::vector<Value>& values,
              void (*read)(const Node& node, Value& value)) {
    constexpr std::size_t kMost = 32;
    node.MustBeList();
    if (node.Size() > kMost) {
        node.Expected("a list of at most " + std::to_string(kMost),
                      "one of " + std::to_string(node.Size()));
    }
    values.clear();
    for (std::size_t index = 0; index < node.Size(); ++index) {
        read(node.Element(index), values.emplace_back());
    }
}

void ReadInterfaces(const Node& node, std::vector<std::string>& names) {
    ReadList(node, names, ReadInterface);
}

void ReadType(const Node& node, std::string& type) {
    ReadName(node, type);
    if (FindNotificationType(type) == nullptr) {
        node.Expected("a type of notification", "\"" + type + "\"");
    }
}

void ReadTypes(const Node& node, std::vector<std::string>& types) {
    ReadList(node, types, ReadType);
}

void ReadAddedNotification(const Node& node, AddedNotification& added) {
    node.MustBeObject();
    const std::string* const id = node.HasMember("id") ? node.Member("id").Text() : nullptr;
    if (id == nullptr || id->empty()) {
        node.Expected("a notification with an \"id\"", "none");
    }
    // What is not said of a known type is as usual.
    if (const NotificationType* const type = FindNotificationType(*id)) {
        added.record = NotificationRecordOf(*type);
    }
    ReadNotification(node, added.record);
}

void ReadAddedNotifications(const Node& node, std::vector<AddedNotification>& added) {
    ReadList(node, added, ReadAddedNotification);
}

void ReadStations(const Node& node, std::uint32_t& count) {
    constexpr std::uint32_t kMost = 2007;
    const auto number = NumberOf<std::uint32_t>(node.Value());
    if (!number || *number > kMost) {
        node.Expected("a number from 0 to 2007");
    }
    count = *number;
}

void ReadSeconds(const Node& node, std::uint32_t& seconds) {
    constexpr std::uint32_t kMost = 86400;
    const auto number = NumberOf<std::uint32_t>(node.Value());
    if (!number || *number < 1 || *number > kMost) {
        node.Expected("a number of seconds from 1 to 86400");
    }
    seconds = *number;
}

template <typename Value>
void Find(Members& members, const char* name, Value& value,
          void (*read)(const Node& node, Value& value)) {
    if (const auto member = members.Find(name)) {
        read(*member, value);
    }
}

}  // namespace

bool AddedNotification::operator==(const AddedNotification& other) const {
    // A record has no bytes between its fields.
    return std::memcmp(&record, &other.record, sizeof record) == 0;
}

void ReadSettings(const Node& node, Settings& settings) {
    Members members(node);
    Find(members, "bridge", settings.bridge, ReadBridge);
    Find(members, "ethernet", settings.ethernet, ReadInterfaces);
    Find(members, "usb", settings.usb, ReadInterfaces);
    Find(members, "wifi", settings.wifi, ReadInterfaces);
    Find(members, "guestWifi", settings.guestWifi, ReadInterfaces);
    Find(members, "hostapdDirectory", settings.hostapdDirectory, ReadPath);
    Find(members, "wifiMaxClients", settings.wifiMaxClients, ReadStations);
    Find(members, "leases", settings.leases, ReadPath);
    Find(members, "gpsdHost", settings.gpsdHost, ReadName);
    Find(members, "gpsdPort", settings.gpsdPort, ReadName);
    Find(members, "apn", settings.apn, ReadName);
    members.Field("roamingAllowed", settings.roamingAllowed);
    Find(members, "profile", settings.profile, ReadName);
    Find(members, "powerSupplies", settings.powerSupplies, ReadPath);
    Find(members, "sambaUnit", settings.sambaUnit, ReadName);
    Find(members, "memoryCard", settings.memoryCard, ReadCard);
    Find(members, "updateSocket", settings.updateSocket, ReadPath);
    members.Field("planBytes", settings.planBytes);
    Find(members, "mutedNotifications", settings.mutedNotifications, ReadTypes);
    Find(members, "addedNotifications", settings.addedNotifications, ReadAddedNotifications);
    Find(members, "clientNotificationSeconds", settings.clientNotificationSeconds, ReadSeconds);
    Find(members, "clientQuietSeconds", settings.clientQuietSeconds, ReadSeconds);
    Find(members, "checkSeconds", settings.checkSeconds, ReadSeconds);
    Find(members, "silenceSeconds", settings.silenceSeconds, ReadSeconds);
    members.RejectOthers();
}

}  // namespace binding
