// Times in documents: lengths in seconds, and moments of the time of day.
#pragma once

#include <chrono>
#include <string>

#include "bindings/document/node.h"

namespace binding {

using DocumentTime = std::chrono::sys_time<std::chrono::milliseconds>;

/// A number of seconds from @p least to 604800, which is a week, down to milliseconds.
std::chrono::milliseconds ReadSeconds(const Node& node, double least);

/// A moment, as TimeText writes it.
DocumentTime ReadTime(const Node& node);

/// Such as 2026-11-21T12:00:00.123Z. The time must lie between the years 0 and 9999.
std::string TimeText(DocumentTime time);

}  // namespace binding
