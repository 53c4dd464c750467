#include "service/answer_encoding.h"

#include <utf8.h>

#include <functional>
#include <iterator>
#include <numeric>

bool ReplaceInvalidUtf8(std::string& json) {
    // Most answers are ASCII, which is seen many times faster than UTF-8 is checked. Looking at all
    // of the bytes is faster than ending at the first other one: it takes several at a time.
    const auto bits = std::accumulate(json.begin(), json.end(), '\0', std::bit_or<>());
    const bool ascii = (static_cast<unsigned char>(bits) & 0x80U) == 0;
    if (ascii || utf8::is_valid(json.begin(), json.end())) {
        return false;
    }
    std::string valid;
    valid.reserve(json.size());
    utf8::replace_invalid(json.begin(), json.end(), std::back_inserter(valid));
    json.swap(valid);
    return true;
}
