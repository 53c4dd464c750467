// Times on command lines and in JSON.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "tools/arguments.h"
#include "tools/json_output.h"

/// The number with which @p text begins; @p text is then what follows. Not a number if there is
/// none.
double TakeNumber(std::string_view& text);

/// The value of the option @p name: a time such as 2s, 500ms, 1.5m or 2, which are seconds. Throws
/// UsageError unless it is from @p least to a week.
std::chrono::milliseconds TimeIn(const Arguments& arguments, const std::string& name,
                                 std::chrono::milliseconds least = std::chrono::milliseconds(1));

/// @p time as a number of seconds.
Json SecondsOf(std::chrono::milliseconds time);
