#include "service/answer_encoding.h"

#include <utf8.h>

#include <algorithm>
#include <iterator>

bool ReplaceInvalidUtf8(std::string& json) {
    // Most answers are ASCII, which is seen many times faster than UTF-8 is checked.
    const bool ascii =
        std::none_of(json.begin(), json.end(), [](unsigned char byte) { return byte >= 0x80; });
    if (ascii || utf8::is_valid(json.begin(), json.end())) {
        return false;
    }
    std::string valid;
    valid.reserve(json.size());
    utf8::replace_invalid(json.begin(), json.end(), std::back_inserter(valid));
    json.swap(valid);
    return true;
}
