// The fields of the platform's records, with their names and offsets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

#include "platform/notification.h"
#include "platform/sysint.h"
#include "platform/webui.h"

namespace conformance {

/// The smallest and the largest value that a number may have.
struct Bounds {
    std::int64_t first;
    std::int64_t last;
};

enum class Kind {
    kSigned,
    kUnsigned,
    kText,       ///< a terminated text
    kWholeText,  ///< a text that may fill its field to the last byte
};

struct Field {
    std::string name;
    Kind kind = Kind::kSigned;
    std::size_t offset = 0;
    std::size_t size = 0;
    std::optional<Bounds> bounds = std::nullopt;

    std::span<const std::byte> In(std::span<const std::byte> record) const {
        return record.subspan(offset, size);
    }

    /// The value as text, such as `chargePercent 87`.
    std::string Value(std::span<const std::byte> record) const;

    /// What is wrong with the value; empty when nothing is.
    std::string Problem(std::span<const std::byte> record) const;

    /// Whether the call has not written the field: its bytes still have the value @p fill, as
    /// before the call.
    bool IsUnwritten(std::span<const std::byte> record, std::byte fill) const;
};

using Fields = std::vector<Field>;

/// The fields of @p record that callers read. A record that holds other records and their count has
/// only the fields of the valid ones.
Fields FieldsOf(const sys_cellular_service_stats_t& record);
Fields FieldsOf(const sys_cellular_data_connection_stats_t& record);
Fields FieldsOf(const sys_subscriber_info_t& record);
Fields FieldsOf(const sys_network_sim_lock_t& record);
Fields FieldsOf(const sys_all_sim_slots_t& record);
Fields FieldsOf(const sys_sd_card_info_t& record);
Fields FieldsOf(const sys_samba_share_info_t& record);
Fields FieldsOf(const sys_connected_device_t& record);
Fields FieldsOf(const sys_battery_status_t& record);
Fields FieldsOf(const GpioCustomSettings& record);
Fields FieldsOf(const webui_feature_t& record);
Fields FieldsOf(const webui_configuration_t& record);
Fields FieldsOf(const webui_uri_data_t& record);
Fields FieldsOf(const webui_external_uri_data_t& record);
Fields FieldsOf(const webui_i18n_settings_t& record);
Fields FieldsOf(const webui_software_update_status_t& record);
Fields FieldsOf(const SoftwareUpdateCustomMessages& record);
Fields FieldsOf(const AnsNotificationRecord& record);

/// A number has one field: itself.
template <typename Number>
requires(std::is_integral_v<Number> || std::is_enum_v<Number>) Fields
    FieldsOf(const Number& /*number*/) {
    return {
        {"value", std::is_unsigned_v<Number> ? Kind::kUnsigned : Kind::kSigned, 0, sizeof(Number)}};
}

/// A byte of a block. It has no meaning of its own, but must be written.
inline Fields FieldsOf(const std::byte& /*byte*/) {
    return {{"byte", Kind::kUnsigned, 0, 1}};
}

/// FieldsOf for the bytes of a record.
using FieldsOfBytes = std::function<Fields(std::span<const std::byte>)>;

template <typename Record>
Fields FieldsInBytes(std::span<const std::byte> bytes) {
    static_assert(std::is_trivially_copyable_v<Record>);
    Record record{};
    std::memcpy(&record, bytes.data(), sizeof(record));
    return FieldsOf(record);
}

/// The values of all @p fields, with commas between them.
std::string Values(const Fields& fields, std::span<const std::byte> record);

}  // namespace conformance
