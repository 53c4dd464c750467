#pragma once

#include <cstddef>
#include <cstdlib>
#include <limits>
#include <memory>
#include <type_traits>

struct FreeMemory {
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): calloc has allocated it
    void operator()(void* memory) const { std::free(memory); }
};

/// An array of @p count elements, all zero; null if there is no memory for it. Never throws, not
/// even if the size in bytes exceeds std::size_t, which a count of a device easily does on a 32-bit
/// processor. A device can announce far more records than it delivers; of a large array, only the
/// pages that are written to take memory.
template <class Element>
std::unique_ptr<Element[], FreeMemory> NothrowArray(std::size_t count) {
    static_assert(std::is_trivial_v<Element>, "zeroed bytes must be a valid element");
    constexpr auto kLargest = static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max());
    if (count > kLargest / sizeof(Element)) {
        return nullptr;
    }
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): the system gives large memory already cleared
    void* const memory = std::calloc(count, sizeof(Element));
    return std::unique_ptr<Element[], FreeMemory>(static_cast<Element*>(memory));
}
