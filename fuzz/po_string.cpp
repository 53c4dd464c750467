// Placeholders in translated texts. The input has the text on its first line, then one argument on
// each line.
#include "framework/po_string.h"

#include <algorithm>
#include <array>

#include "fuzz/target.h"

namespace {

using Arguments = std::array<std::string, 11>;

/// Fills the placeholders in a slow and simple way, to compare with. Returns false when the result
/// gets too large: an argument may contain placeholders for later arguments, so the text can grow
/// with each argument.
bool Fill(std::string& text, const Arguments& arguments, std::size_t count) {
    constexpr std::size_t kLargest = 2'000;
    for (std::size_t index = 0; index < count; ++index) {
        const std::string placeholder = "%" + std::to_string(index + 1);
        std::size_t at = text.find(placeholder);
        while (at != std::string::npos) {
            text.replace(at, placeholder.size(), arguments.at(index));
            if (text.size() > kLargest) {
                return false;
            }
            at = text.find(placeholder, at + arguments.at(index).size());
        }
    }
    return true;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string input = InputText(data, size);
    // Texts and arguments are passed as C strings, so they cannot contain a null byte.
    std::replace(input.begin(), input.end(), '\0', '0');
    std::string_view rest = input;
    const std::string text(TakeUntil(rest, '\n'));
    Arguments arguments;
    std::array<const char*, 11> pointers{};
    std::size_t count = 0;
    while (!rest.empty() && count < arguments.size()) {
        arguments.at(count) = TakeUntil(rest, '\n');
        pointers.at(count) = arguments.at(count).c_str();
        ++count;
    }
    for (const std::size_t wanted : {count, count / 2}) {
        std::string expected = text;
        if (!Fill(expected, arguments, wanted)) {
            continue;
        }
        std::string filled = text;
        const std::string copy =
            FormatPoString(static_cast<int>(wanted), filled, std::span(pointers.data(), count));
        Require(filled == expected, "each placeholder is filled once, in order", filled);
        Require(copy == filled, "a copy is returned", copy);
    }
    for (const int none : {0, -1}) {
        std::string same = text;
        Require(FormatPoString(none, same, std::span(pointers.data(), count)) == text,
                "no arguments leave the text as it is", same);
    }
    return 0;
}
