// What the caller of the recorder has asked for.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "tools/kestal_record/new_files.h"
#include "tools/kestal_record/record_command.h"
#include "tools/kestal_record/record_device.h"
#include "tools/tool.h"

struct Order {
    std::string file;
    /// Zero: one look at the device.
    std::chrono::milliseconds length{0};
    std::chrono::milliseconds interval{1000};
    Questions questions;
    bool keepsIdentities = false;
    bool isBundle = false;
    std::string log;
    Existing existing = Existing::refused;
};

/// The options that make an order.
std::vector<Option> RecordOptions();

/// Throws UsageError.
Order OrderOf(const Arguments& arguments, const RecordedBinding& recorded);
