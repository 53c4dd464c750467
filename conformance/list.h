// Calls that fill a buffer, and tell the size that it needs.
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
    std::string arguments;  ///< those in front of the buffer, as text
    int success = 0;
    int bufferNeeded = 0;
    /// Whether the call must answer a buffer that is too small with bufferNeeded; otherwise any
    /// failure is right.
    bool tellsTooSmall = true;
    /// Whether callers do as well with a call that asks for a buffer although the list is empty.
    bool mayAskForNothing = true;
    std::size_t recordSize = 1;
    FieldsOfBytes fields;
    /// Checks the whole contents each time that they have been read; may be empty.
    std::function<void(std::span<const std::byte>)> check;
    /// Makes the call. The count has the declared type, which has 32 bits.
    std::function<int(void* buffer, void* count)> make;
    /// Whether two threads may make the call at the same time.
    bool isForThreads = true;
};

/// The contents of a list.
struct ListContents {
    int code = 0;
    std::vector<std::byte> bytes;
};

/// Makes the call without a buffer and with buffers of several sizes, checks the answers against
/// its declaration, keeps it for the tests with threads and signals, and returns what the list
/// holds.
ListContents Examine(Probe& probe, const List& list);

/// Reads the list as a caller does, its length first, and again if it has grown meanwhile. Checks
/// its records.
Outcome Read(Probe& probe, const List& list);

}  // namespace conformance
