// The parts of ReadModem, in the order in which they must run: each uses what those before have
// read.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "bindings/linux/modem/modem.h"

namespace binding {

/// State of the SIM, who it identifies, and the slots. @p properties are those of the modem.
void ReadSim(const nlohmann::json& tree, const nlohmann::json& properties, Modem& modem);

/// Registration. @p sim are the properties of the SIM.
void ReadNetwork(const nlohmann::json& network, const nlohmann::json& sim, Modem& modem);

/// Technology, signal and bands. @p object is that of the modem, with all of its interfaces.
void ReadRadio(const nlohmann::json& object, const nlohmann::json& properties,
               const nlohmann::json& cells, Modem& modem);

}  // namespace binding
