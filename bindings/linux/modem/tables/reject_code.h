// Why the network has rejected the device.
#pragma once

#include <optional>
#include <string_view>

namespace binding {

/// Cause (3GPP TS 24.008, 10.5.3.6, 10.5.5.14 and 10.5.6.6; the numbers of TS 24.301, 9.9.3.9 are
/// the same) behind an error of ModemManager; none for an error that is no reject.
std::optional<int> RejectCodeOf(std::string_view errorName);

}  // namespace binding
