#include "bindings/linux/settings.h"

#include <nlohmann/json.hpp>

namespace binding {

namespace {

void ReadName(const Node& node, std::string& name) {
    const std::string* const text = node.Text();
    if (text == nullptr) {
        node.Expected("a text");
    }
    name = *text;
}

void ReadNames(const Node& node, std::vector<std::string>& names) {
    node.MustBeList();
    names.clear();
    for (std::size_t index = 0; index < node.Size(); ++index) {
        ReadName(node.Element(index), names.emplace_back());
    }
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

void ReadSettings(const Node& node, Settings& settings) {
    Members members(node);
    Find(members, "bridge", settings.bridge, ReadName);
    Find(members, "ethernet", settings.ethernet, ReadNames);
    Find(members, "usb", settings.usb, ReadNames);
    Find(members, "wifi", settings.wifi, ReadNames);
    Find(members, "guestWifi", settings.guestWifi, ReadNames);
    Find(members, "hostapdDirectory", settings.hostapdDirectory, ReadName);
    members.Field("wifiMaxClients", settings.wifiMaxClients);
    Find(members, "leases", settings.leases, ReadName);
    Find(members, "gpsdHost", settings.gpsdHost, ReadName);
    Find(members, "gpsdPort", settings.gpsdPort, ReadName);
    Find(members, "apn", settings.apn, ReadName);
    members.Field("roamingAllowed", settings.roamingAllowed);
    Find(members, "profile", settings.profile, ReadName);
    Find(members, "powerSupplies", settings.powerSupplies, ReadName);
    Find(members, "sambaUnit", settings.sambaUnit, ReadName);
    Find(members, "memoryCard", settings.memoryCard, ReadName);
    Find(members, "updateSocket", settings.updateSocket, ReadName);
    members.Field("planBytes", settings.planBytes);
    Find(members, "mutedNotifications", settings.mutedNotifications, ReadNames);
    Find(members, "clientNotificationSeconds", settings.clientNotificationSeconds, ReadSeconds);
    Find(members, "checkSeconds", settings.checkSeconds, ReadSeconds);
    Find(members, "silenceSeconds", settings.silenceSeconds, ReadSeconds);
    members.RejectOthers();
}

}  // namespace binding
