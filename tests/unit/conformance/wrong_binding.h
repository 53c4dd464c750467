// Functions that the linker puts between kestal-conformance and the simulator (--wrap). The
// environment variable KESTAL_FAULT names the promise that they break, or something unusual that
// they do without breaking one.
#pragma once

#include <atomic>
#include <cstdlib>
#include <string_view>

/// The function that kestal-conformance calls by the name @p symbol.
// NOLINTNEXTLINE(cppcoreguidelines-macro-usage): names of the linker are literals
#define WRAPPED(symbol) asm("__wrap_" symbol)
/// The simulator's own function of the name @p symbol.
// NOLINTNEXTLINE(cppcoreguidelines-macro-usage): names of the linker are literals
#define REAL(symbol) asm("__real_" symbol)

namespace wrong {

/// Whether @p fault is the chosen one.
inline bool Has(std::string_view fault) {
    const char* const chosen = std::getenv("KESTAL_FAULT");
    return chosen != nullptr && fault == chosen;
}

/// 0 or 1, in no order: what a value does that changes with every call.
inline unsigned int Flicker() {
    static std::atomic<unsigned int> calls = 0;
    constexpr unsigned int kOdd = 2654435761U;
    return (++calls * kOdd >> 16U) & 1U;
}

}  // namespace wrong
