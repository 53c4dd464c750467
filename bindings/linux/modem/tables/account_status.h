// What the carrier says of the account in protocol configuration options (PCO).
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string_view>

namespace binding {

/// Finds what the operator of the SIM with the number @p imsi says in @p list, ModemManager's
/// property Pco: a list of session, whether the options are complete, and their bytes. The value is
/// one of sys_account_status_e, or 0 for an account that does not limit the connection.
std::optional<int> AccountStatusOf(const nlohmann::json& list, std::string_view imsi);

}  // namespace binding
