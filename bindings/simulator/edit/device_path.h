// Places in a device document as people name them, such as sys.getBatteryStatus.chargePercent.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "bindings/document/document_error.h"

namespace binding {

/// The path that @p text names in @p document. Names are separated by dots, positions in lists
/// stand in brackets. A name may contain dots: the longest name of the object that fits is taken;
/// the rest of a path to a channel that does not exist yet is one name. The sections sys and webui
/// may be left out. Throws std::runtime_error for a text that is not a path, and for a call that no
/// section knows.
KeyPath ResolvePath(const std::string& text, const nlohmann::ordered_json& document);

/// Throws UnknownName unless a document may have a value at @p path.
void MustBeKnown(const nlohmann::ordered_json& document, const KeyPath& path);

/// The value at @p path; null when there is none.
const nlohmann::ordered_json* FindAt(const nlohmann::ordered_json& document, const KeyPath& path);

/// The paths of all values of @p document, in its order.
std::vector<std::string> AllPaths(const nlohmann::ordered_json& document);

}  // namespace binding
