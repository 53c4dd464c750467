// What the declarations in platform/ say about each field of a record.
#include <algorithm>
#include <array>

#include "conformance/field.h"

namespace conformance {

namespace {

template <typename Member>
Field Described(const char* name, std::size_t offset, std::optional<Bounds> bounds = {}) {
    if constexpr (std::is_array_v<Member>) {
        static_assert(std::is_same_v<std::remove_extent_t<Member>, char>);
        return {name, Kind::kText, offset, sizeof(Member), bounds};
    } else {
        return {name, std::is_unsigned_v<Member> ? Kind::kUnsigned : Kind::kSigned, offset,
                sizeof(Member), bounds};
    }
}

}  // namespace

/// Field @p member of @p Record; its bounds may follow.
// NOLINTNEXTLINE(cppcoreguidelines-macro-usage): it needs the member's name as text and its offset
#define FIELD(Record, member, ...)               \
    Described<decltype(Record::member)>(#member, \
                                        offsetof(Record, member) __VA_OPT__(, ) __VA_ARGS__)

Fields FieldsOf(const sys_cellular_service_stats_t& /*record*/) {
    using Record = sys_cellular_service_stats_t;
    return {FIELD(Record, technology, Bounds{SYS_TECHNOLOGY_NONE, SYS_TECHNOLOGY_5G}),
            FIELD(Record, roaming, Bounds{SYS_ROAMING_NONE, SYS_ROAMING_FLASH}),
            FIELD(Record, signalBars),
            FIELD(Record, sinr),
            FIELD(Record, pci),
            FIELD(Record, snr),
            FIELD(Record, networkName),
            FIELD(Record, networkId),
            FIELD(Record, femtoCell),
            FIELD(Record, fiveGType)};
}

Fields FieldsOf(const sys_cellular_data_connection_stats_t& /*record*/) {
    using Record = sys_cellular_data_connection_stats_t;
    return {FIELD(Record, trafficStatus, Bounds{SYS_TRAFFIC_NONE, SYS_TRAFFIC_BOTH}),
            FIELD(Record, duration),
            FIELD(Record, bytesReceived1),
            FIELD(Record, bytesTransmitted1),
            FIELD(Record, bytesReceived2),
            FIELD(Record, bytesTransmitted2)};
}

Fields FieldsOf(const sys_subscriber_info_t& /*record*/) {
    Field identity = FIELD(sys_subscriber_info_t, identity);
    identity.kind = Kind::kWholeText;
    return {identity};
}

Fields FieldsOf(const sys_network_sim_lock_t& /*record*/) {
    return {FIELD(sys_network_sim_lock_t, carrierBlocked, Bounds{0, 1})};
}

Fields FieldsOf(const sys_all_sim_slots_t& record) {
    using Slot = sys_sim_slot_t;
    constexpr int kSlots = std::size(decltype(record.slots){});
    Fields fields = {FIELD(sys_all_sim_slots_t, count, Bounds{0, kSlots})};
    for (int index = 0; index < std::min(record.count, kSlots); ++index) {
        const std::array slot = {
            FIELD(Slot, networkName), FIELD(Slot, active),
            FIELD(Slot, simStatus, Bounds{SYS_SIM_NOT_FOUND, SYS_SIM_READY}),
            FIELD(Slot, dataConnectionStatus,
                  Bounds{SYS_DATA_CONNECTION_READY, SYS_DATA_CONNECTION_UNACTIVATED}),
            FIELD(Slot, serviceStatus, Bounds{SYS_SERVICE_NONE, SYS_SERVICE_AVAILABLE})};
        for (Field field : slot) {
            field.name = "slots[" + std::to_string(index) + "]." + field.name;
            field.offset += offsetof(sys_all_sim_slots_t, slots) +
                            static_cast<std::size_t>(index) * sizeof(Slot);
            fields.push_back(std::move(field));
        }
    }
    return fields;
}

Fields FieldsOf(const sys_sd_card_info_t& /*record*/) {
    return {FIELD(sys_sd_card_info_t, totalCapacity), FIELD(sys_sd_card_info_t, freeSpace)};
}

Fields FieldsOf(const sys_samba_share_info_t& /*record*/) {
    return {FIELD(sys_samba_share_info_t, cardInUse)};
}

Fields FieldsOf(const sys_connected_device_t& /*record*/) {
    return {FIELD(sys_connected_device_t, connectionKind,
                  Bounds{SYS_CONNECTION_WIFI, SYS_CONNECTION_GUEST_WIFI})};
}

Fields FieldsOf(const sys_battery_status_t& /*record*/) {
    using Record = sys_battery_status_t;
    return {
        FIELD(Record, chargePercent), FIELD(Record, chargingState, Bounds{0, 1}),
        FIELD(Record, detection, Bounds{SYS_BATTERY_INVALID, SYS_BATTERY_PRESENT}),
        FIELD(Record, chargingSource, Bounds{SYS_CHARGING_SOURCE_NONE, SYS_CHARGING_SOURCE_USB})};
}

Fields FieldsOf(const GpioCustomSettings& /*record*/) {
    using Record = GpioCustomSettings;
    return {FIELD(Record, name), FIELD(Record, lowState), FIELD(Record, highState)};
}

Fields FieldsOf(const webui_feature_t& /*record*/) {
    return {FIELD(webui_feature_t, name), FIELD(webui_feature_t, value)};
}

Fields FieldsOf(const webui_configuration_t& /*record*/) {
    return {FIELD(webui_configuration_t, name), FIELD(webui_configuration_t, value)};
}

Fields FieldsOf(const webui_uri_data_t& /*record*/) {
    return {FIELD(webui_uri_data_t, address), FIELD(webui_uri_data_t, titleId)};
}

Fields FieldsOf(const webui_external_uri_data_t& /*record*/) {
    return {FIELD(webui_external_uri_data_t, address)};
}

Fields FieldsOf(const webui_i18n_settings_t& /*record*/) {
    return {FIELD(webui_i18n_settings_t, language)};
}

Fields FieldsOf(const webui_software_update_status_t& /*record*/) {
    using Record = webui_software_update_status_t;
    return {FIELD(Record, status), FIELD(Record, userInitiated), FIELD(Record, value),
            FIELD(Record, version)};
}

Fields FieldsOf(const SoftwareUpdateCustomMessages& /*record*/) {
    using Record = SoftwareUpdateCustomMessages;
    return {FIELD(Record, description), FIELD(Record, download), FIELD(Record, readyToInstall),
            FIELD(Record, installSuccess), FIELD(Record, installFail)};
}

Fields FieldsOf(const AnsNotificationRecord& /*record*/) {
    using Record = AnsNotificationRecord;
    return {FIELD(Record, category),
            FIELD(Record, id),
            FIELD(Record, labelId),
            FIELD(Record, titleId),
            FIELD(Record, textId),
            FIELD(Record, severity, Bounds{ANS_SEVERITY_INFO, ANS_SEVERITY_CRITICAL}),
            FIELD(Record, flags)};
}

#undef FIELD

}  // namespace conformance
