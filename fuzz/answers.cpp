#include "fuzz/answers.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "fuzz/target.h"

bool IsUtf8(std::string_view text) {
    const nlohmann::json value = std::string(text);
    try {
        (void)value.dump();
        return true;
    } catch (const nlohmann::json::type_error&) {
        return false;
    }
}

void RequireJson(const std::string& answer) {
    std::string structure = answer;
    if (!IsUtf8(answer)) {
        std::replace_if(
            structure.begin(), structure.end(),
            [](char byte) { return static_cast<unsigned char>(byte) >= 0x80; }, '?');
    }
    Require(nlohmann::json::accept(structure), "every answer is JSON", answer);
}
