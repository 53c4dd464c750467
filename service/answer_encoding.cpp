#include "service/answer_encoding.h"

#include <utf8.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>

namespace {

bool IsAscii(char byte) {
    return (static_cast<unsigned char>(byte) & 0x80U) == 0;
}

/// The first byte of the text that is not ASCII. Compares several bytes at once, because nearly all
/// of an answer is ASCII.
const char* SkipAscii(const char* text, const char* end) {
    using Words = std::uint64_t[2];
    constexpr std::uint64_t kHighBits = 0x8080808080808080U;
    Words words;
    while (end - text >= static_cast<std::ptrdiff_t>(sizeof(words))) {
        std::memcpy(words, text, sizeof(words));
        if (((words[0] | words[1]) & kHighBits) != 0) {
            break;
        }
        text += sizeof(words);
    }
    return std::find_if_not(text, end, IsAscii);
}

/// Every byte of a character that is not ASCII is itself not ASCII. So a text is valid if each of
/// its sequences of such bytes is.
bool IsValidUtf8(const char* text, const char* end) {
    while ((text = SkipAscii(text, end)) != end) {
        const char* const next = std::find_if(text, end, IsAscii);
        if (!utf8::is_valid(text, next)) {
            return false;
        }
        text = next;
    }
    return true;
}

}  // namespace

bool ReplaceInvalidUtf8(std::string& json) {
    if (IsValidUtf8(json.data(), json.data() + json.size())) {
        return false;
    }
    std::string valid;
    valid.reserve(json.size());
    utf8::replace_invalid(json.begin(), json.end(), std::back_inserter(valid));
    json.swap(valid);
    return true;
}
