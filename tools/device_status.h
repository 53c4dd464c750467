// The state of the device for people, from calls of the platform alone.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "bindings/names/enumerations.h"

/// Draws the device in lines: titles of sections, names and values, each in a column of its own. In
/// place of the value of a call that fails stands which call it is and how it fails. @p
/// bindingCodes are the names of the codes of the binding.
std::string DeviceStatus(binding::Enumeration bindingCodes);

/// A section that has a row for each of @p rows, as DeviceStatus draws it; empty without rows.
std::string StatusSection(const std::string& title,
                          const std::vector<std::pair<std::string, std::string>>& rows);
