// Which kinds of values are expected of daemons.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <span>
#include <string_view>

namespace binding {

enum class ValueKind {
    boolean,
    integer,
    number,
    text,
    texts,         ///< a list of texts only
    integers,      ///< a list of integers only
    integerFirst,  ///< a list that begins with an integer
    list,
    dictionary,
};

/// What a property must be to be understood.
struct ExpectedKind {
    std::string_view interface;
    /// The property; or, with a dot, an entry of one that is a dictionary.
    std::string_view property;
    ValueKind kind;
};
using ExpectedKinds = std::span<const ExpectedKind>;

bool IsOfKind(const nlohmann::json& value, ValueKind kind);

// For people.
const char* Describe(ValueKind kind);
const char* DescribeKindOf(const nlohmann::json& value);

}  // namespace binding
