#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "Branches.hpp"
#include "Numbers.hpp"
#include "include/ctpp2/CTPP2Util.hpp"

namespace CTPP {
namespace {

/// Per byte: 0 if it is written unchanged, 'u' for \u00xx, otherwise the letter after the
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

/// A vector of bytes, all of which the processor compares at once.
template <std::size_t Size>
using Bytes [[gnu::vector_size(Size)]] = unsigned char;

/// Copies the bytes of one vector and returns whether none of them needs an escape. Inlined, so
/// that a loop keeps the constants of the comparison in registers.
template <std::size_t Size>
[[gnu::always_inline]] inline bool CopyPlainBytes(const char* from, char* to) {
    Bytes<Size> bytes;
    std::memcpy(&bytes, from, Size);
    std::memcpy(to, &bytes, Size);
    const auto escaped = (bytes < 0x20) | (bytes == '"') | (bytes == '/') | (bytes == '\\') |
                         ((bytes | ('<' ^ '>')) == '>');
    std::array<UINT_64, Size / sizeof(UINT_64)> words{};
    std::memcpy(words.data(), &escaped, Size);
    return std::all_of(words.begin(), words.end(), [](UINT_64 word) { return word == 0; });
}

/// Copies the text, which has at least the size of a vector, up to the first vector that contains a
/// byte which needs an escape; returns how many bytes come before that vector. The last vector ends
/// with the text, so it may overlap the one before it.
template <std::size_t Size>
std::size_t CopyPlainText(std::string_view text, char* to) {
    const char* const from = text.data();
    const std::size_t last = text.size() - Size;
    std::size_t count = 0;
    while (count < last && CopyPlainBytes<Size>(from + count, to + count)) {
        count += Size;
    }
    return count >= last && CopyPlainBytes<Size>(from + last, to + last) ? text.size() : count;
}

/// Copies bytes up to the first that needs an escape; returns how many. It may have copied some of
/// the following bytes as well.
std::size_t CopyPlain(std::string_view text, char* to) {
    std::size_t count = 0;
    if (text.size() >= 16) {
        count = CopyPlainText<16>(text, to);
    } else if (text.size() >= 8) {
        count = CopyPlainText<8>(text, to);
    }
    for (; count < text.size() && kEscapes[static_cast<unsigned char>(text[count])] == 0; ++count) {
        to[count] = text[count];
    }
    return count;
}

/// Collects small pieces of output in a buffer and appends them to the text together, which is
/// faster than to append each one.
class Buffer {
  public:
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): bytes are read once they are written
    explicit Buffer(std::string& out) : json(out) {}

    void Put(char character) {
        if (size == room.size()) {
            Flush();
        }
        room[size++] = character;
    }

    void Put(std::string_view text) {
        while (!text.empty()) {
            const std::size_t count = text.copy(room.data() + size, room.size() - size);
            size += count;
            text.remove_prefix(count);
            if (!text.empty()) {
                Flush();
            }
        }
    }

    void PutQuoted(std::string_view text) {
        // The usual case: the text needs no escape and fits into the buffer.
        if (room.size() - size >= text.size() + 2) {
            char* const to = room.data() + size;
            to[0] = '"';
            if (CopyPlain(text, to + 1) == text.size()) {
                to[text.size() + 1] = '"';
                size += text.size() + 2;
                return;
            }
        }
        PutQuotedInParts(text);
    }

    void Flush() {
        json.append(room.data(), size);
        size = 0;
    }

  private:
    void PutQuotedInParts(std::string_view text) {
        Put('"');
        for (;;) {
            const std::size_t free = room.size() - size;
            const std::size_t plain = CopyPlain(text.substr(0, free), room.data() + size);
            size += plain;
            text.remove_prefix(plain);
            if (text.empty()) {
                break;
            }
            if (plain == free) {
                Flush();
            } else {
                PutEscaped(static_cast<unsigned char>(text.front()));
                text.remove_prefix(1);
            }
        }
        Put('"');
    }

    void PutEscaped(unsigned char byte) {
        constexpr std::string_view kHexDigits = "0123456789abcdef";
        const char escape = kEscapes[byte];
        Put('\\');
        Put(escape);
        if (escape == 'u') {
            Put("00");
            Put(kHexDigits[byte >> 4U]);
            Put(kHexDigits[byte & 0xFU]);
        }
    }

    std::string& json;
    std::size_t size = 0;
    std::array<char, 4096> room;
};

}  // namespace

/// Writes a tree. It keeps the open arrays and hashes in a container in place of calling itself,
/// because recursion would overflow the stack for a very deep tree.
class JSONWriter {
  public:
    explicit JSONWriter(std::string& out) : json(out) { levels.reserve(8); }

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
        json.Flush();
    }

  private:
    /// An array or a hash that is being written, and its next element or member.
    struct Level {
        const std::deque<CDT>* array = nullptr;
        std::size_t element = 0;
        const CDT::Members* hash = nullptr;
        CDT::Members::Position member = nullptr;
    };

    void WriteElement(Level& level) {
        if (level.element == level.array->size()) {
            Close(']');
            return;
        }
        if (level.element > 0) {
            json.Put(',');
        }
        WriteValue((*level.array)[level.element++]);
    }

    void WriteMember(Level& level) {
        if (level.member == level.hash->End()) {
            Close('}');
            return;
        }
        if (level.member != level.hash->Begin()) {
            json.Put(',');
        }
        const auto& [key, value] = **level.member++;
        json.PutQuoted(key.Text());
        json.Put(':');
        WriteValue(value);
    }

    /// Writes a value without members, or opens an array or a hash.
    void WriteValue(const CDT& data) {
        if (const CDT::Text* text = std::get_if<CDT::Text>(&data.content)) {
            WriteText(*text);
        } else if (const INT_64* integer = std::get_if<INT_64>(&data.content)) {
            WriteInteger(*integer);
        } else if (const CDT::Hash* hash = data.GetHash()) {
            json.Put('{');
            levels.push_back({.hash = &hash->members, .member = hash->members.Begin()});
        } else if (const CDT::Array* array = data.GetArray()) {
            json.Put('[');
            levels.push_back({.array = &array->elements});
        } else if (const W_FLOAT* real = std::get_if<W_FLOAT>(&data.content);
                   real != nullptr && std::isfinite(*real)) {
            std::string digits;
            AppendReal(*real, digits);
            json.Put(digits);
        } else {
            json.Put("null");
        }
    }

    void WriteInteger(INT_64 value) {
        std::array<char, 20> digits{};
        const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), value);
        json.Put({digits.data(), result.ptr});
    }

    /// Writes a text that was read as a number: without quotes if it is a number in JSON, otherwise
    /// as a text.
    void WriteText(const CDT::Text& text) {
        if (!std::holds_alternative<std::monostate>(text.number) && IsJSONNumber(text.value)) {
            json.Put(text.value);
        } else {
            json.PutQuoted(text.value);
        }
    }

    void Close(char bracket) {
        json.Put(bracket);
        levels.pop_back();
    }

    Buffer json;
    std::vector<Level> levels;
};

void CDT2JSON(const CDT& data, std::string& json) {
    JSONWriter(json).Write(data);
}

}  // namespace CTPP
