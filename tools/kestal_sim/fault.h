// The options with which a call is made to fail now and then, to be slow or to hang.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "tools/tool.h"

std::vector<Option> FaultOptions();

/// The fault that the arguments of fail ask for, as the device's document describes it. Throws
/// UsageError.
nlohmann::ordered_json FaultOf(const Arguments& arguments);
