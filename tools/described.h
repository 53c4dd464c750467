// Records of the platform as JSON: an object with the names of the fields.
#pragma once

#include <cstddef>
#include <string>

#include "platform/sysint.h"
#include "platform/webui.h"
#include "tools/json_output.h"

/// Makes a value of @p text, which stands in a field with room for @p room bytes.
using TextForm = Json (*)(const std::string& text, std::size_t room);

/// The text itself, also if it is not UTF-8.
Json PlainText(const std::string& text, std::size_t room);

Json Described(const sys_cellular_service_stats_t& stats, TextForm form = PlainText);
Json Described(const sys_cellular_data_connection_stats_t& stats, TextForm form = PlainText);
Json Described(const sys_subscriber_info_t& info, TextForm form = PlainText);
Json Described(const sys_network_sim_lock_t& lock, TextForm form = PlainText);
Json Described(const sys_all_sim_slots_t& all, TextForm form = PlainText);
Json Described(const GpioCustomSettings& settings, TextForm form = PlainText);
Json Described(const sys_sd_card_info_t& info, TextForm form = PlainText);
Json Described(const sys_samba_share_info_t& info, TextForm form = PlainText);
Json Described(const sys_battery_status_t& status, TextForm form = PlainText);
Json Described(const sys_connected_device_t& device, TextForm form = PlainText);
Json Described(const webui_feature_t& feature, TextForm form = PlainText);
Json Described(const webui_configuration_t& configuration, TextForm form = PlainText);
Json Described(const webui_uri_data_t& data, TextForm form = PlainText);
Json Described(const webui_external_uri_data_t& data, TextForm form = PlainText);
Json Described(const webui_i18n_settings_t& settings, TextForm form = PlainText);
Json Described(const webui_software_update_status_t& status, TextForm form = PlainText);
Json Described(const SoftwareUpdateCustomMessages& messages, TextForm form = PlainText);
