#include "bindings/simulator/edit/json_patch.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "bindings/posix/json/json_text.h"

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

/// Whether both are objects, @p before is not empty, and @p after has all of its members.
bool OnlyGrows(const json& before, const json& after) {
    return before.is_object() && after.is_object() && !before.empty() &&
           std::all_of(before.items().begin(), before.items().end(),
                       [&](const auto& item) { return after.contains(item.key()); });
}

void Patch(std::string& text, KeyPath& path, const json& before, const json& after) {
    if (before == after) {
        return;
    }
    if (!OnlyGrows(before, after)) {
        const auto place = FindValue(text, path).value();
        const std::size_t line = text.rfind('\n', place.begin) + 1;
        text.replace(place.begin, place.end - place.begin,
                     Formatted(after, path.size(), place.begin - line));
        return;
    }
    for (const auto& item : after.items()) {
        const std::string& name = item.key();
        path.emplace_back(name);
        if (before.contains(name)) {
            Patch(text, path, before.at(name), item.value());
        } else {
            const std::size_t column = path.size() * kIndentation + NameText(name).size();
            const std::string value = Formatted(item.value(), path.size(), column);
            text = WithMember(text, {path.begin(), path.end() - 1}, name, value);
        }
        path.pop_back();
    }
}

}  // namespace

std::string Formatted(const json& value, std::size_t level, std::size_t column) {
    const std::string line = OnOneLine(value);
    // Leaves room for a comma that may follow.
    const bool fits = column + line.size() < kWidth;
    return !value.is_structured() || value.empty() || fits ? line : OnLines(value, level);
}

std::string Patched(const std::string& text, const json& before, const json& after) {
    std::string result = text;
    KeyPath path;
    Patch(result, path, before, after);
    return result;
}

}  // namespace binding
