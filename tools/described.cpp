#include "tools/described.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <span>

#include "platform/fixed_text.h"

namespace {

template <std::size_t Size>
Json Text(const char (&field)[Size], TextForm form) {
    return form(FixedText(field), Size);
}

}  // namespace

Json PlainText(const std::string& text, std::size_t /*room*/) {
    return text;
}

Json Described(const sys_cellular_service_stats_t& stats, TextForm form) {
    return Json::object({{"technology", Named(stats.technology, binding::kTechnology)},
                         {"roaming", Named(stats.roaming, binding::kRoaming)},
                         {"signalBars", stats.signalBars},
                         {"sinr", stats.sinr},
                         {"pci", stats.pci},
                         {"snr", stats.snr},
                         {"networkName", Text(stats.networkName, form)},
                         {"networkId", Text(stats.networkId, form)},
                         {"femtoCell", stats.femtoCell},
                         {"fiveGType", Named(stats.fiveGType, binding::kFiveGType)}});
}

Json Described(const sys_cellular_data_connection_stats_t& stats, TextForm /*form*/) {
    return Json::object({{"trafficStatus", Named(stats.trafficStatus, binding::kTrafficStatus)},
                         {"duration", stats.duration},
                         {"bytesReceived1", stats.bytesReceived1},
                         {"bytesTransmitted1", stats.bytesTransmitted1},
                         {"bytesReceived2", stats.bytesReceived2},
                         {"bytesTransmitted2", stats.bytesTransmitted2}});
}

Json Described(const sys_subscriber_info_t& info, TextForm form) {
    return Json::object({{"identity", Text(info.identity, form)}});
}

Json Described(const sys_network_sim_lock_t& lock, TextForm /*form*/) {
    return Json::object({{"carrierBlocked", lock.carrierBlocked}});
}

Json Described(const sys_all_sim_slots_t& all, TextForm form) {
    const std::span<const sys_sim_slot_t> slots = all.slots;
    const auto valid = static_cast<std::size_t>(std::max(all.count, 0));
    Json list = Json::array();
    for (const sys_sim_slot_t& slot : slots.first(std::min(valid, slots.size()))) {
        list.push_back(
            Json::object({{"networkName", Text(slot.networkName, form)},
                          {"active", slot.active},
                          {"simStatus", Named(slot.simStatus, binding::kSimStatus)},
                          {"dataConnectionStatus",
                           Named(slot.dataConnectionStatus, binding::kDataConnectionStatus)},
                          {"serviceStatus", Named(slot.serviceStatus, binding::kServiceStatus)}}));
    }
    return Json::object({{"count", all.count}, {"slots", list}});
}

Json Described(const GpioCustomSettings& settings, TextForm form) {
    return Json::object({{"name", Text(settings.name, form)},
                         {"lowState", Text(settings.lowState, form)},
                         {"highState", Text(settings.highState, form)}});
}

Json Described(const sys_sd_card_info_t& info, TextForm /*form*/) {
    return Json::object({{"totalCapacity", info.totalCapacity}, {"freeSpace", info.freeSpace}});
}

Json Described(const sys_samba_share_info_t& info, TextForm /*form*/) {
    return Json::object({{"cardInUse", info.cardInUse}});
}

Json Described(const sys_battery_status_t& status, TextForm /*form*/) {
    return Json::object(
        {{"chargePercent", status.chargePercent},
         {"chargingState", status.chargingState},
         {"detection", Named(status.detection, binding::kBatteryDetection)},
         {"chargingSource", Named(status.chargingSource, binding::kChargingSource)}});
}

Json Described(const sys_connected_device_t& device, TextForm /*form*/) {
    return Json::object(
        {{"connectionKind", Named(device.connectionKind, binding::kConnectionKind)}});
}

Json Described(const webui_feature_t& feature, TextForm form) {
    return Json::object({{"name", Text(feature.name, form)}, {"value", feature.value}});
}

Json Described(const webui_configuration_t& configuration, TextForm form) {
    return Json::object(
        {{"name", Text(configuration.name, form)}, {"value", Text(configuration.value, form)}});
}

Json Described(const webui_uri_data_t& data, TextForm form) {
    return Json::object(
        {{"address", Text(data.address, form)}, {"titleId", Text(data.titleId, form)}});
}

Json Described(const webui_external_uri_data_t& data, TextForm form) {
    return Json::object({{"address", Text(data.address, form)}});
}

Json Described(const webui_i18n_settings_t& settings, TextForm form) {
    return Json::object({{"language", Text(settings.language, form)}});
}

Json Described(const webui_software_update_status_t& status, TextForm form) {
    return Json::object({{"status", status.status},
                         {"userInitiated", status.userInitiated},
                         {"value", status.value},
                         {"version", Text(status.version, form)}});
}

Json Described(const SoftwareUpdateCustomMessages& messages, TextForm form) {
    return Json::object({{"description", Text(messages.description, form)},
                         {"download", Text(messages.download, form)},
                         {"readyToInstall", Text(messages.readyToInstall, form)},
                         {"installSuccess", Text(messages.installSuccess, form)},
                         {"installFail", Text(messages.installFail, form)}});
}
