#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <new>

/// Room for @p count elements, cleared; null when there is no memory for so many. Never throws,
/// even where the size of so many is no std::size_t, as soon happens on 32-bit processors.
template <class Element>
std::unique_ptr<Element[]> NothrowArray(std::size_t count) {
    constexpr auto kLargest = static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max());
    if (count > kLargest / sizeof(Element)) {
        return nullptr;
    }
    return std::unique_ptr<Element[]>(new (std::nothrow) Element[count]());
}
