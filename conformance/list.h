// Calls that fill a buffer whose size must be asked for.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "conformance/field.h"
#include "conformance/probe.h"

namespace conformance {

struct List {
    std::string call;       ///< as declared
    std::string arguments;  ///< those before the buffer, as text
    int success = 0;
    int bufferNeeded = 0;
    /// Whether a buffer that is too small is answered with bufferNeeded, not with any failure.
    bool tellsTooSmall = true;
    std::size_t recordSize = 1;
    FieldsOfBytes fields;
    /// Makes the call. The count has the type that is declared, of 32 bits.
    std::function<int(void* buffer, void* count)> make;
    /// Whether two threads may make the call as it is.
    bool isForThreads = true;
};

/// What a list holds.
struct ListContents {
    int code = 0;
    std::int64_t count = 0;
    std::vector<std::byte> bytes;
};

/// Makes the call without a buffer and with buffers of several sizes, holds the answers against its
/// declaration, keeps it for the tests with threads and signals, and returns what the list holds.
ListContents Examine(Probe& probe, const List& list);

/// The list as one text, read as a caller reads it: its length first.
std::string Read(Probe& probe, const List& list);

}  // namespace conformance
