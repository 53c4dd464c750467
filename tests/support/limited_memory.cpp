// Linked into tests of what happens when a list is too long for memory: an array of more than a
// gigabyte cannot be had, on any machine.
#include <new>

void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    constexpr std::size_t kLimit = std::size_t{1} << 30U;
    if (size > kLimit) {
        return nullptr;
    }
    try {
        return operator new[](size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
