// Linked into tests of what happens when a list is too long for memory: an array of more than a
// gigabyte cannot be had, on any machine.
#include "tests/support/limited_memory.h"

#include <new>

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

void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    if (size > limit) {
        return nullptr;
    }
    try {
        return operator new[](size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
