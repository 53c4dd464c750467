#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "tools/json_output.h"
#include "tools/tool.h"

/// webui_cli: makes calls of the web UI configuration library.
/// @p bindingCodes are the names of the codes of the binding with which the tool is linked.
Tool WebuiTool(binding::Enumeration bindingCodes = {});

/// The answer of @p call, such as "webui_get_i18n_settings", which is in memory as it was
/// delivered. Null for a call that has none, and for an answer of another size than those of the
/// call.
Json DescribedWebuiAnswer(std::string_view call, std::span<const std::byte> answer);
