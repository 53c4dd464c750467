// Calls that are watched, as text.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "bindings/simulator/watch/watch_message.h"

/// A time, 12 columns wide.
std::string TimeText(std::chrono::nanoseconds time);

/// What stands in place of the time, with the two blanks behind it, if there is none.
inline const std::string kNoTime(14, ' ');

/// A line about @p message: the call with its argument, what it has answered or failed with, and
/// the time that it took. Without a line feed.
std::string LineAbout(const binding::WatchMessage& message);

/// @p text with question marks in place of control characters.
std::string WithoutControls(std::string_view text);
