#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "Branches.hpp"
#include "Numbers.hpp"
#include "include/ctpp2/CTPP2Util.hpp"

namespace CTPP {
namespace {

/// Per byte: 0 if it is written as it is, 'u' for \u00xx, otherwise the letter behind the
/// backslash.
constexpr std::array<char, 256> kEscapes = [] {
    std::array<char, 256> escapes{};
    for (std::size_t control = 0; control < 0x20; ++control) {
        escapes[control] = 'u';
    }
    escapes['\b'] = 'b';
    escapes['\t'] = 't';
    escapes['\n'] = 'n';
    escapes['\f'] = 'f';
    escapes['\r'] = 'r';
    escapes['"'] = '"';
    escapes['/'] = '/';
    escapes['\\'] = '\\';
    escapes['<'] = 'u';
    escapes['>'] = 'u';
    return escapes;
}();

void AppendQuoted(std::string_view text, std::string& out) {
    constexpr std::string_view kHexDigits = "0123456789abcdef";
    const auto isEscaped = [](unsigned char byte) { return kEscapes[byte] != 0; };
    out += '"';
    auto plain = text.begin();
    for (;;) {
        const auto found = std::find_if(plain, text.end(), isEscaped);
        out.append(plain, found);
        if (found == text.end()) {
            break;
        }
        plain = found + 1;
        const auto byte = static_cast<unsigned char>(*found);
        const char escape = kEscapes[byte];
        out += '\\';
        out += escape;
        if (escape == 'u') {
            out.append("00");
            out += kHexDigits[byte >> 4U];
            out += kHexDigits[byte & 0xFU];
        }
    }
    out += '"';
}

}  // namespace

/// Writes a tree with a stack of its own, so that the depth of the tree does not matter.
class JSONWriter {
  public:
    explicit JSONWriter(std::string& out) : json(out) {}

    void Write(const CDT& root) {
        WriteValue(root);
        while (!levels.empty()) {
            Level& level = levels.back();
            if (level.array != nullptr) {
                WriteElement(level);
            } else {
                WriteMember(level);
            }
        }
    }

  private:
    using Members = std::map<std::string, CDT>;

    /// An array or a hash that is being written, and its next element or member.
    struct Level {
        const std::deque<CDT>* array = nullptr;
        std::size_t element = 0;
        const Members* hash = nullptr;
        Members::const_iterator member{};
    };

    void WriteElement(Level& level) {
        if (level.element == level.array->size()) {
            Close(']');
            return;
        }
        if (level.element > 0) {
            json += ',';
        }
        WriteValue((*level.array)[level.element++]);
    }

    void WriteMember(Level& level) {
        if (level.member == level.hash->end()) {
            Close('}');
            return;
        }
        if (level.member != level.hash->begin()) {
            json += ',';
        }
        const auto& [key, value] = *level.member++;
        AppendQuoted(key, json);
        json += ':';
        WriteValue(value);
    }

    /// Writes a value without members, or opens an array or a hash.
    void WriteValue(const CDT& data) {
        if (const CDT::Text* text = std::get_if<CDT::Text>(&data.content)) {
            WriteText(*text);
        } else if (const INT_64* integer = std::get_if<INT_64>(&data.content)) {
            AppendInteger(*integer, json);
        } else if (const CDT::Hash* hash = data.GetHash()) {
            json += '{';
            levels.push_back({.hash = &hash->members, .member = hash->members.begin()});
        } else if (const CDT::Array* array = data.GetArray()) {
            json += '[';
            levels.push_back({.array = &array->elements});
        } else if (const W_FLOAT* real = std::get_if<W_FLOAT>(&data.content);
                   real != nullptr && std::isfinite(*real)) {
            AppendReal(*real, json);
        } else {
            json.append("null");
        }
    }

    /// A text that was read as a number is written as one, if it is one.
    void WriteText(const CDT::Text& text) {
        if (!std::holds_alternative<std::monostate>(text.number) && IsJSONNumber(text.value)) {
            json.append(text.value);
        } else {
            AppendQuoted(text.value, json);
        }
    }

    void Close(char bracket) {
        json += bracket;
        levels.pop_back();
    }

    std::string& json;
    std::vector<Level> levels;
};

void CDT2JSON(const CDT& data, std::string& json) {
    JSONWriter(json).Write(data);
}

}  // namespace CTPP
