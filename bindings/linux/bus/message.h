// Messages of the bus as trees.
#pragma once

#include <systemd/sd-bus.h>

#include <nlohmann/json_fwd.hpp>

namespace binding {

/// The arguments of @p message as a list. Structs and arrays are lists, dictionaries are objects
/// whose names are the keys as text, variants are their values. A message that is damaged gives
/// what stands before the damage.
nlohmann::json Arguments(sd_bus_message* message);

}  // namespace binding
