#include "service/answer_encoding.h"

#include <utf8.h>

#include <functional>
#include <iterator>
#include <numeric>

bool ReplaceInvalidUtf8(std::string& json) {
    // Most answers are ASCII, and testing for ASCII is many times faster than checking UTF-8. The
    // test combines all bytes in place of stopping at the first that is not ASCII, because the
    // compiler can then process several bytes at a time.
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
