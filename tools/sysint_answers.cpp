#include "tools/sysint_answers.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>

#include "platform/fixed_text.h"

Json Described(const sys_cellular_service_stats_t& stats) {
    return Json::object({{"technology", Named(stats.technology, binding::kTechnology)},
                         {"roaming", Named(stats.roaming, binding::kRoaming)},
                         {"signalBars", stats.signalBars},
                         {"sinr", stats.sinr},
                         {"pci", stats.pci},
                         {"snr", stats.snr},
                         {"networkName", FixedText(stats.networkName)},
                         {"networkId", FixedText(stats.networkId)},
                         {"femtoCell", stats.femtoCell},
                         {"fiveGType", Named(stats.fiveGType, binding::kFiveGType)}});
}

Json Described(const sys_cellular_data_connection_stats_t& stats) {
    return Json::object({{"trafficStatus", Named(stats.trafficStatus, binding::kTrafficStatus)},
                         {"duration", stats.duration},
                         {"bytesReceived1", stats.bytesReceived1},
                         {"bytesTransmitted1", stats.bytesTransmitted1},
                         {"bytesReceived2", stats.bytesReceived2},
                         {"bytesTransmitted2", stats.bytesTransmitted2}});
}

Json Described(const sys_subscriber_info_t& info) {
    return Json::object({{"identity", FixedText(info.identity)}});
}

Json Described(const sys_network_sim_lock_t& lock) {
    return Json::object({{"carrierBlocked", lock.carrierBlocked}});
}

Json Described(const sys_all_sim_slots_t& all) {
    const std::span<const sys_sim_slot_t> slots = all.slots;
    const auto valid = static_cast<std::size_t>(std::max(all.count, 0));
    Json list = Json::array();
    for (const sys_sim_slot_t& slot : slots.first(std::min(valid, slots.size()))) {
        list.push_back(
            Json::object({{"networkName", FixedText(slot.networkName)},
                          {"active", slot.active},
                          {"simStatus", Named(slot.simStatus, binding::kSimStatus)},
                          {"dataConnectionStatus",
                           Named(slot.dataConnectionStatus, binding::kDataConnectionStatus)},
                          {"serviceStatus", Named(slot.serviceStatus, binding::kServiceStatus)}}));
    }
    return Json::object({{"count", all.count}, {"slots", list}});
}

Json Described(const GpioCustomSettings& settings) {
    return Json::object({{"name", FixedText(settings.name)},
                         {"lowState", FixedText(settings.lowState)},
                         {"highState", FixedText(settings.highState)}});
}

Json Described(const sys_sd_card_info_t& info) {
    return Json::object({{"totalCapacity", info.totalCapacity}, {"freeSpace", info.freeSpace}});
}

Json Described(const sys_samba_share_info_t& info) {
    return Json::object({{"cardInUse", info.cardInUse}});
}

Json Described(const sys_battery_status_t& status) {
    return Json::object(
        {{"chargePercent", status.chargePercent},
         {"chargingState", status.chargingState},
         {"detection", Named(status.detection, binding::kBatteryDetection)},
         {"chargingSource", Named(status.chargingSource, binding::kChargingSource)}});
}

Json Described(const sys_connected_device_t& device) {
    return Json::object(
        {{"connectionKind", Named(device.connectionKind, binding::kConnectionKind)}});
}

Json DescribedSelection(const std::array<int, 3>& info) {
    return Json::object({{"allowed", info[0]}, {"selected", info[1]}, {"scanStatus", info[2]}});
}

Json DescribedBands(const std::array<int, 2>& bands) {
    return Json::object({{"band", bands[0]}, {"second", bands[1]}});
}

namespace {

using Bytes = std::span<const std::byte>;
using Description = std::function<Json(Bytes)>;

/// Describes a record of the type @p T with @p describe.
template <typename T, typename Describe>
Description OfRecord(Describe describe) {
    return [describe](Bytes answer) {
        T value{};
        if (answer.size() != sizeof value) {
            return Json();
        }
        std::memcpy(&value, answer.data(), sizeof value);
        return Json(describe(value));
    };
}

Json DescribedDevices(Bytes answer) {
    Json list = Json::array();
    for (; answer.size() >= sizeof(sys_connected_device_t);
         answer = answer.subspan(sizeof(sys_connected_device_t))) {
        sys_connected_device_t device{};
        std::memcpy(&device, answer.data(), sizeof device);
        list.push_back(Described(device));
    }
    return list;
}

Json DescribedGroupId(Bytes answer) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): bytes are bytes
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(answer.data());
    return Json::object({{"gid", HexText(std::span(bytes, answer.size()))}});
}

const std::map<std::string_view, Description>& Descriptions() {
    static const std::map<std::string_view, Description> kAll = {
// NOLINTBEGIN(cppcoreguidelines-macro-usage): the name as text
#define QUERY_DESCRIPTION(Type, name, Meaning, field, description) \
    {"sys_" #name, OfRecord<Type>(As<Meaning>(field))},
        SYSINT_QUERIES(QUERY_DESCRIPTION)
#undef QUERY_DESCRIPTION
#define NAMED_DESCRIPTION(name, Subject, field, description) \
    {"sys_" #name, OfRecord<int>(As<int>(field))},
            SYSINT_NAMED_QUERIES(NAMED_DESCRIPTION)
#undef NAMED_DESCRIPTION
        // NOLINTEND(cppcoreguidelines-macro-usage)
        {"sys_getModemMnsInfo", OfRecord<std::array<int, 3>>(DescribedSelection)},
        {"sys_getCellular5GBand", OfRecord<std::array<int, 2>>(DescribedBands)},
        {"sys_getWiFiGuestProfileEnabled", OfRecord<int>(As<int>("enabled"))},
        {"sys_getSIMCarrierGID", DescribedGroupId},
        {"sys_getConnectedDeviceList", DescribedDevices},
    };
    return kAll;
}

}  // namespace

Json DescribedSysAnswer(std::string_view call, Bytes answer) {
    const auto found = Descriptions().find(call);
    return found == Descriptions().end() ? Json() : found->second(answer);
}
