// Updates as RAUC describes them.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "bindings/linux/update/update_state.h"

namespace binding {

/// What follows from RAUC's properties (of de.pengutronix.rauc.Installer) and @p before, the state
/// that followed from the properties before. RAUC itself does not remember that an installation has
/// succeeded, nor, when it is started anew, that one has failed.
UpdateState NextRaucState(const UpdateState& before, const nlohmann::json& installer);

/// What follows from @p before when RAUC has left the bus: an installation during which it ends is
/// not done, and nobody goes on with it. RAUC itself remembers nothing of it, either.
UpdateState RaucStateAfterItsEnd(const UpdateState& before);

/// Whether @p slots is what RAUC's GetSlotStatus returns: a list of the slots' names and
/// properties.
bool AreSlots(const nlohmann::json& slots);

/// The version that was installed last; empty when RAUC does not know.
std::string LastInstalledVersion(const nlohmann::json& slots);

}  // namespace binding
