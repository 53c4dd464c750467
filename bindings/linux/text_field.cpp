#include "bindings/linux/text_field.h"

#include <utf8.h>

#include <iterator>

namespace binding {

namespace {

/// Whether @p byte continues a character.
bool IsContinuation(char byte) {
    constexpr unsigned kMask = 0xC0;
    constexpr unsigned kContinuation = 0x80;
    return (static_cast<unsigned char>(byte) & kMask) == kContinuation;
}

}  // namespace

std::string FittingText(std::string_view text, std::size_t size) {
    text = text.substr(0, text.find('\0'));
    std::string fitting;
    utf8::replace_invalid(text.begin(), text.end(), std::back_inserter(fitting));
    if (fitting.size() > size) {
        std::size_t end = size;
        while (end > 0 && IsContinuation(fitting[end])) {
            --end;
        }
        fitting.resize(end);
    }
    return fitting;
}

}  // namespace binding
