// What the tools for the device print, as values of a document.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include "bindings/document/document_error.h"

namespace binding {

/// @p value as a document has it at @p path, if it is what sysintcli or webui_cli print for the
/// call, or a part of that; otherwise @p value itself. Throws std::runtime_error for a number
/// printed with the name of another one.
nlohmann::ordered_json FromPrinted(KeyPath path, const nlohmann::ordered_json& value);

}  // namespace binding
