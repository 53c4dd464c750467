// The object "sys": what the system-interface SDK answers.
#include <charconv>
#include <iterator>
#include <string>

#include "bindings/document/device_reader.h"
#include "bindings/document/document_time.h"

namespace binding {

namespace {

void ReadValue(const Node& node, std::int32_t& number) {
    Read(node, number);
}

void ReadValue(const Node& node, std::uint32_t& number) {
    Read(node, number);
}

void ReadValue(const Node& node, sys_wan_5g_mode_e& mode) {
    std::int32_t number = 0;
    Read(node, number);
    mode = static_cast<sys_wan_5g_mode_e>(number);
}

void ReadValue(const Node& node, sys_cellular_service_stats_t& stats) {
    Members(node)
        .Field("technology", stats.technology)
        .Field("roaming", stats.roaming)
        .Field("signalBars", stats.signalBars)
        .Field("sinr", stats.sinr)
        .Field("pci", stats.pci)
        .Field("snr", stats.snr)
        .Field("networkName", stats.networkName)
        .Field("networkId", stats.networkId)
        .Field("femtoCell", stats.femtoCell)
        .Field("fiveGType", stats.fiveGType)
        .RejectOthers();
}

void ReadValue(const Node& node, sys_cellular_data_connection_stats_t& stats) {
    Members(node)
        .Field("trafficStatus", stats.trafficStatus)
        .Field("duration", stats.duration)
        .Field("bytesReceived1", stats.bytesReceived1)
        .Field("bytesTransmitted1", stats.bytesTransmitted1)
        .Field("bytesReceived2", stats.bytesReceived2)
        .Field("bytesTransmitted2", stats.bytesTransmitted2)
        .RejectOthers();
}

void ReadValue(const Node& node, sys_subscriber_info_t& info) {
    Members(node).Field("identity", info.identity).RejectOthers();
}

void ReadValue(const Node& node, sys_network_sim_lock_t& lock) {
    Members(node).Field("carrierBlocked", lock.carrierBlocked).RejectOthers();
}

void ReadValue(const Node& node, sys_all_sim_slots_t& all) {
    Members members(node);
    if (const auto slots = members.Find("slots")) {
        slots->MustBeList();
        const std::size_t count = slots->Size();
        if (count > std::size(all.slots)) {
            slots->Expected("a list of at most 2 slots", "one of " + std::to_string(count));
        }
        all.count = static_cast<std::int32_t>(count);
        for (std::size_t index = 0; index < count; ++index) {
            sys_sim_slot_t& slot = all.slots[index];
            Members(slots->Element(index))
                .Field("networkName", slot.networkName)
                .Field("active", slot.active)
                .Field("simStatus", slot.simStatus)
                .Field("dataConnectionStatus", slot.dataConnectionStatus)
                .Field("serviceStatus", slot.serviceStatus)
                .RejectOthers();
        }
    }
    members.Field("count", all.count).RejectOthers();
}

void ReadValue(const Node& node, MnsInfo& info) {
    Members(node)
        .Field("allowed", info.allowed)
        .Field("selected", info.selected)
        .Field("scanStatus", info.scanStatus)
        .RejectOthers();
}

void ReadValue(const Node& node, sys_sd_card_info_t& info) {
    Members(node)
        .Field("totalCapacity", info.totalCapacity)
        .Field("freeSpace", info.freeSpace)
        .RejectOthers();
}

void ReadValue(const Node& node, sys_samba_share_info_t& info) {
    Members(node).Field("cardInUse", info.cardInUse).RejectOthers();
}

void ReadValue(const Node& node, sys_battery_status_t& status) {
    Members(node)
        .Field("chargePercent", status.chargePercent)
        .Field("chargingState", status.chargingState)
        .Field("detection", status.detection)
        .Field("chargingSource", status.chargingSource)
        .RejectOthers();
}

void ReadValue(const Node& node, GpioCustomSettings& settings) {
    Members(node)
        .Field("name", settings.name)
        .Field("lowState", settings.lowState)
        .Field("highState", settings.highState)
        .RejectOthers();
}

void ReadValue(const Node& node, Bands& bands) {
    Members(node).Field("band", bands.band).Field("second", bands.second).RejectOthers();
}

void ReadValue(const Node& node, GroupId& gid) {
    constexpr const char* kExpected = "a list of at most 255 bytes";
    if (!node.IsList()) {
        node.Expected(kExpected);
    }
    if (node.Size() > gid.bytes.size()) {
        node.Expected(kExpected, "one of " + std::to_string(node.Size()));
    }
    gid.length = static_cast<std::uint8_t>(node.Size());
    for (std::size_t index = 0; index < gid.length; ++index) {
        Read(node.Element(index), gid.bytes.at(index));
    }
}

void ReadValue(const Node& node, std::vector<sys_connected_device_t>& devices) {
    node.MustBeList();
    devices.resize(node.Size());
    for (std::size_t index = 0; index < devices.size(); ++index) {
        Members(node.Element(index))
            .Field("connectionKind", devices[index].connectionKind)
            .RejectOthers();
    }
}

constexpr const char* kDataCallStatus = "getCellularDataConnectionStatus";

/// One value for every index from 0 to @p largest, or an object of values by index.
template <typename T>
void ReadIndexed(const Node& node, IndexedAnswer<T>& answer, int smallest, int largest) {
    const auto readValue = [](const Node& from, T& value) { ReadValue(from, value); };
    IndexedAnswer<T> kept;
    const Failure failure = ReadFailure(
        node, [&](const Node& healed) { ReadIndexed(healed, kept, smallest, largest); });
    if (failure.fault) {
        answer = std::move(kept);
        answer.fault = failure.fault;
        return;
    }
    if (failure.code != 0) {
        answer.every.named = true;
        answer.every.error = failure.code;
        return;
    }
    if (!node.IsObject()) {
        ReadAnswer(node, answer.every, readValue);
        return;
    }
    for (const std::string& name : node.MemberNames()) {
        int index = -1;
        (void)std::from_chars(name.data(), name.data() + name.size(), index);
        if (index < smallest || index > largest || std::to_string(index) != name) {
            node.Member(name).Expected(
                "an index from " + std::to_string(smallest) + " to " + std::to_string(largest),
                "an unknown name");
        }
        ReadAnswer(node.Member(name), answer.byIndex[index], readValue);
    }
}

void ReadValue(const Node& node, Action& action) {
    if (!node.IsObject() || !node.HasMember("takes")) {
        node.Expected("{\"takes\": seconds}");
    }
    Members members(node);
    action.takes = ReadSeconds(*members.Find("takes"), 0);
    members.RejectOthers();
}

/// Reads the entry of a call that has no result, if there is one. Without a failure, it works.
void ReadAction(Members& sys, const std::string& name, Answer<Action>& answer) {
    if (const auto member = sys.Find(name)) {
        ReadAnswer(*member, answer,
                   [](const Node& from, Action& action) { ReadValue(from, action); });
        answer.named = true;
    }
}

/// Reads the entry of such a call that can only be a failure.
void ReadFailureOnly(const Node& node, Answer<Action>& answer) {
    Answer<Action> kept{.named = true};
    const Failure failure =
        ReadFailure(node, [&](const Node& healed) { ReadFailureOnly(healed, kept); });
    if (failure.fault) {
        answer = kept;
        answer.fault = failure.fault;
        return;
    }
    answer.error = failure.code;
    if (answer.error == 0) {
        node.Expected("{\"error\": N}");
    }
}

/// Reads a status of the data call that is about to change by itself.
void ReadStatusChange(const Node& node, std::int32_t& status, std::optional<StatusChange>& change) {
    Members members(node);
    const auto now = members.Find("now");
    const auto next = members.Find("next");
    const auto at = members.Find("at");
    if (!now || !next || !at) {
        ExpectedNumber(node, "a 32-bit integer or an object with \"now\", \"next\" and \"at\"");
    }
    Read(*now, status);
    StatusChange read;
    Read(*next, read.next);
    read.at = ReadTime(*at);
    members.RejectOthers();
    change = read;
}

}  // namespace

void ReadSys(const Node& node, Device& device) {
    Members sys(node);
    if (const auto member = sys.Find("sdkInitialize")) {
        ReadFailureOnly(*member, device.sdkInitialize);
    }
    ReadAction(sys, "cellularDataConnect", device.cellularDataConnect);
    ReadAction(sys, "cellularDataDisconnect", device.cellularDataDisconnect);
    if (const auto member = sys.Find(kDataCallStatus)) {
        ReadAnswer(*member, device.getCellularDataConnectionStatus,
                   [&](const Node& from, std::int32_t& status) {
                       if (from.IsObject()) {
                           ReadStatusChange(from, status, device.statusChange);
                       } else {
                           Read(from, status);
                       }
                   });
    }

    const auto query = [&sys](const std::string& name, auto& answer) {
        if (name == kDataCallStatus) {
            return;  // is read above
        }
        if (const auto member = sys.Find(name)) {
            ReadAnswer(*member, answer,
                       [](const Node& from, auto& value) { ReadValue(from, value); });
        }
    };
#define DOCUMENT_READ(Type, name, Meaning, field, description) query(#name, device.name);
    SYSINT_QUERIES(DOCUMENT_READ)
#undef DOCUMENT_READ
    query("getModemMnsInfo", device.getModemMnsInfo);
    query("getCellular5GBand", device.getCellular5GBand);
    query("getConnectedDeviceList", device.getConnectedDeviceList);
    if (const auto member = sys.Find("getSIMCarrierGID")) {
        ReadIndexed(*member, device.getSIMCarrierGID, 0, UINT8_MAX);
    }
    if (const auto member = sys.Find("getWiFiGuestProfileEnabled")) {
        ReadIndexed(*member, device.getWiFiGuestProfileEnabled, SYS_WIFI_GUEST_2_4_GHZ,
                    SYS_WIFI_GUEST_5_GHZ);
    }
    const auto namedQuery = [&sys](const std::string& name, auto& answers) {
        if (const auto member = sys.Find(name)) {
            ReadNamedAnswers(*member, answers,
                             [](const Node& from, std::int32_t& value) { ReadValue(from, value); });
        }
    };
#define DOCUMENT_READ_NAMED(name, Subject, field, description) namedQuery(#name, device.name);
    SYSINT_NAMED_QUERIES(DOCUMENT_READ_NAMED)
#undef DOCUMENT_READ_NAMED
    sys.RejectOthers("the name of a call");
}

}  // namespace binding
