#include "bindings/linux/bus/value_kind.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "bindings/linux/bus/tree.h"

namespace binding {

namespace {

using nlohmann::json;

bool IsText(const json& value) {
    return value.is_string();
}

bool IsInteger(const json& value) {
    return Integer(value).has_value();
}

bool AreAll(const json& value, bool (*isOne)(const json&)) {
    return value.is_array() && std::all_of(value.begin(), value.end(), isOne);
}

}  // namespace

bool IsOfKind(const json& value, ValueKind kind) {
    switch (kind) {
        case ValueKind::boolean:
            return value.is_boolean();
        case ValueKind::integer:
            return IsInteger(value);
        case ValueKind::number:
            return value.is_number() && std::isfinite(value.get<double>());
        case ValueKind::text:
            return IsText(value);
        case ValueKind::texts:
            return AreAll(value, IsText);
        case ValueKind::integers:
            return AreAll(value, IsInteger);
        case ValueKind::integerFirst:
            return value.is_array() && !value.empty() && IsInteger(value.front());
        case ValueKind::list:
            return value.is_array();
        case ValueKind::dictionary:
            return value.is_object();
    }
    return true;
}

const char* Describe(ValueKind kind) {
    switch (kind) {
        case ValueKind::boolean:
            return "a boolean";
        case ValueKind::integer:
            return "an integer of 64 bits";
        case ValueKind::number:
            return "a finite number";
        case ValueKind::text:
            return "a text";
        case ValueKind::texts:
            return "a list of texts";
        case ValueKind::integers:
            return "a list of integers";
        case ValueKind::integerFirst:
            return "a list that begins with an integer";
        case ValueKind::list:
            return "a list";
        case ValueKind::dictionary:
            return "a dictionary";
    }
    return "anything";
}

const char* DescribeKindOf(const json& value) {
    if (value.is_number_unsigned() && !IsInteger(value)) {
        return "a number that is too large";
    }
    if (value.is_number_float() && !std::isfinite(value.get<double>())) {
        return "a number that is not finite";
    }
    if (value.is_array()) {
        return value.empty() ? "an empty list" : "another list";
    }
    switch (value.type()) {
        case json::value_t::boolean:
            return "a boolean";
        case json::value_t::string:
            return "a text";
        case json::value_t::object:
            return "a dictionary";
        case json::value_t::number_integer:
        case json::value_t::number_unsigned:
            return "an integer";
        case json::value_t::number_float:
            return "a fraction";
        default:
            return "nothing that can be read";
    }
}

}  // namespace binding
