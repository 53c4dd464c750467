// For tests with lists that do not fit into memory: allocations of arrays above a limit, usually a
// gigabyte, fail even if the machine has enough memory.
#include "tests/support/limited_memory.h"

extern "C" {
void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
}

namespace {

constexpr std::size_t kUsualLimit = std::size_t{1} << 30U;

std::size_t limit = kUsualLimit;

}  // namespace

LimitedMemory::LimitedMemory(std::size_t bytes) {
    limit = bytes;
}

LimitedMemory::~LimitedMemory() {
    limit = kUsualLimit;
}

/// The linker replaces calloc by this function (--wrap=calloc).
void* __wrap_calloc(std::size_t count, std::size_t size) {
    return size != 0 && count > limit / size ? nullptr : __real_calloc(count, size);
}
