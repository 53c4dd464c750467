#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "tools/tool.h"

/// Reads a list whose length must be asked for first: @p read(buffer, count) is the platform's call
/// @p call, which returns @p bufferNeeded when the buffer is missing or too small. Throws
/// CallFailed.
template <typename Record, typename Count, typename Read>
std::vector<Record> ReadList(const std::string& call, int success, int bufferNeeded, Read read) {
    // The list may grow between two calls, so they are repeated, but not for ever.
    constexpr int kTries = 5;
    std::vector<Record> records;
    Count count = 0;
    int code = read(static_cast<Record*>(nullptr), &count);
    if (code == success) {
        return records;
    }
    for (int attempt = 0; attempt < kTries && code == bufferNeeded && count > 0; ++attempt) {
        records.assign(static_cast<std::size_t>(count), Record{});
        code = read(records.data(), &count);
    }
    Check(call, code, success);
    records.resize(std::min(records.size(), static_cast<std::size_t>(std::max<Count>(count, 0))));
    return records;
}
