#include "bindings/simulator/edit/json_patch.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "bindings/json/formatted.h"
#include "bindings/posix/json/json_text.h"

namespace binding {

namespace {

using json = nlohmann::ordered_json;

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
            const std::size_t column = ColumnOfMember(name, path.size());
            const std::string value = Formatted(item.value(), path.size(), column);
            text = WithMember(text, {path.begin(), path.end() - 1}, name, value);
        }
        path.pop_back();
    }
}

}  // namespace

std::string Patched(const std::string& text, const json& before, const json& after) {
    std::string result = text;
    KeyPath path;
    Patch(result, path, before, after);
    return result;
}

}  // namespace binding
