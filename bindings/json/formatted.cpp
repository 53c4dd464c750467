#include "bindings/json/formatted.h"

#include <nlohmann/json.hpp>

namespace binding {

namespace {

using json = nlohmann::ordered_json;

constexpr std::size_t kIndentation = 4;
constexpr std::size_t kWidth = 100;

std::string NameText(const std::string& name) {
    return json(name).dump() + ": ";
}

std::string OnOneLine(const json& value) {
    if (!value.is_structured()) {
        return value.dump();
    }
    std::string text;
    for (const auto& item : value.items()) {
        text += (text.empty() ? "" : ", ") + (value.is_object() ? NameText(item.key()) : "") +
                OnOneLine(item.value());
    }
    return value.is_object() ? "{" + text + "}" : "[" + text + "]";
}

std::string OnLines(const json& value, std::size_t level) {
    const std::string indentation(level * kIndentation, ' ');
    std::string text;
    for (const auto& item : value.items()) {
        const std::string name = value.is_object() ? NameText(item.key()) : "";
        text += text.empty() ? "\n" : ",\n";
        text += indentation;
        text += std::string(kIndentation, ' ');
        text += name;
        text += Formatted(item.value(), level + 1, (level + 1) * kIndentation + name.size());
    }
    text += "\n" + indentation;
    return value.is_object() ? "{" + text + "}" : "[" + text + "]";
}

}  // namespace

std::string Formatted(const json& value, std::size_t level, std::size_t column) {
    const std::string line = OnOneLine(value);
    // Leaves room for a comma that may follow.
    const bool fits = column + line.size() < kWidth;
    return !value.is_structured() || value.empty() || fits ? line : OnLines(value, level);
}

std::size_t ColumnOfMember(const std::string& name, std::size_t level) {
    return level * kIndentation + NameText(name).size();
}

}  // namespace binding
