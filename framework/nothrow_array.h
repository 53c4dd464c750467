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

/// Room for @p count elements, cleared; null when there is no memory for so many. Never throws,
/// even where the size of so many is no std::size_t, as soon happens on 32-bit processors. What
/// nobody writes to takes no memory where there is much of it: a device can announce far more than
/// it delivers.
template <class Element>
std::unique_ptr<Element[], FreeMemory> NothrowArray(std::size_t count) {
    static_assert(std::is_trivial_v<Element>, "its bytes are all that it is");
    constexpr auto kLargest = static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max());
    if (count > kLargest / sizeof(Element)) {
        return nullptr;
    }
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): it does not touch large memory to clear it
    void* const memory = std::calloc(count, sizeof(Element));
    return std::unique_ptr<Element[], FreeMemory>(static_cast<Element*>(memory));
}
