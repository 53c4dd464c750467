// Functions that the linker puts between kestal-conformance and the simulator (--wrap). They break
// the promise that the environment variable KESTAL_FAULT names.
#pragma once

#include <cstdlib>
#include <string_view>

/// The function that kestal-conformance calls by the name @p symbol.
// NOLINTNEXTLINE(cppcoreguidelines-macro-usage): names of the linker are literals
#define WRAPPED(symbol) asm("__wrap_" symbol)
/// The simulator's own function of the name @p symbol.
// NOLINTNEXTLINE(cppcoreguidelines-macro-usage): names of the linker are literals
#define REAL(symbol) asm("__real_" symbol)

namespace wrong {

/// Whether the promise that @p fault stands for is broken.
inline bool Has(std::string_view fault) {
    const char* const chosen = std::getenv("KESTAL_FAULT");
    return chosen != nullptr && fault == chosen;
}

}  // namespace wrong
