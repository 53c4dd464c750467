#include "bindings/linux/modem/tree_lists.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "bindings/linux/bus/tree.h"

namespace binding {

using nlohmann::json;

const json& Element(const json& object, const char* name, std::size_t index) {
    static const json nothing;
    const json& list = Member(object, name);
    return list.is_array() && index < list.size() ? list[index] : nothing;
}

std::vector<std::string> Texts(const json& object, const char* name) {
    std::vector<std::string> texts;
    const json& list = Member(object, name);
    if (list.is_array()) {
        for (const json& element : list) {
            if (element.is_string()) {
                texts.push_back(element.get<std::string>());
            }
        }
    }
    return texts;
}

std::optional<std::string> NonEmptyText(const json& object, const char* name) {
    auto text = Text(object, name);
    return text && !text->empty() ? text : std::nullopt;
}

bool IsDigits(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(),
                                        [](char digit) { return digit >= '0' && digit <= '9'; });
}

}  // namespace binding
