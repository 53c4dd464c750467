// Texts of the status data set for numbers of the platform. Each function returns kTextSet, or
// kTextNone for a number that has no text, and then leaves the given string as it was.
#pragma once

#include <cstdint>
#include <string>

/// State of the connection as the user sees it, from a sys_service_status_e, a
/// sys_data_connection_status_e and a sys_account_status_e. A restriction of the account decides
/// first, then the service, then the data connection. For a restricted account and for an available
/// service, this returns kTextSet even if the data connection has no text and @p text stays as it
/// was.
int GetConnectionStateText(std::int32_t serviceStatus, std::int32_t dataConnectionStatus,
                           std::int32_t accountStatus, std::string& text);

/// @p status is a sys_data_connection_status_e.
int GetDataConnectionStatusText(std::int32_t status, std::string& text);

/// @p femtoCell is 1 when served by a femtocell, else 0.
int GetFemtoCellText(std::int32_t femtoCell, std::string& text);

/// "true" for 1, "false" for 0.
int GetBoolText(std::int32_t value, std::string& text);

/// @p detection is a sys_battery_detection_e.
int GetBatteryDetectionText(std::int32_t detection, std::string& text);

/// @p status is a sys_gps_status_e.
int GetGpsStatusText(std::int32_t status, std::string& text);

/// @p status is a sys_sim_status_e.
int GetSimStatusText(std::int32_t status, std::string& text);

/// @p source is a sys_charging_source_e.
int GetChargingSourceText(std::int32_t source, std::string& text);
