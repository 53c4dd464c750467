// What the calls of the system-interface SDK have answered, as JSON.
#pragma once

#include <array>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <span>
#include <string_view>
#include <type_traits>

#include "platform/sysint.h"
#include "platform/sysint_queries.h"
#include "tools/described.h"
#include "tools/json_output.h"

/// Manual network selection: whether it is allowed, whether it is in use, state of the scan.
Json DescribedSelection(const std::array<int, 3>& info);

/// The NR band, and the second one.
Json DescribedBands(const std::array<int, 2>& bands);

/// Returns a function that describes a record by its fields, and a number as @p field.
template <typename Meaning>
auto As(const char* field) {
    return [field](const auto& value) {
        // clang warns of a capture that only some kinds of values use.
        static_cast<void>(field);
        if constexpr (std::is_class_v<Meaning>) {
            return Described(value);
        } else if constexpr (std::is_enum_v<Meaning>) {
            return Json::object({{field, Named(value, binding::NamesOfMeaning<Meaning>())}});
        } else {
            return Json::object({{field, value}});
        }
    };
}

/// The answer of @p call, such as "sys_getSIMStatus", which is in memory as it was delivered. Null
/// for a call that has none, and for an answer of another size than those of the call.
Json DescribedSysAnswer(std::string_view call, std::span<const std::byte> answer);
