// The battery as UPower describes it.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "bindings/linux/power/power_supply.h"

namespace binding {

/// Reads the properties of UPower's display device, which stands for all batteries together. UPower
/// does not tell a charger from a USB port: @p kernel does. What UPower leaves out is taken from
/// there, too.
PowerSupplies ReadUPower(const nlohmann::json& displayDevice, const PowerSupplies& kernel);

}  // namespace binding
