#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <deque>
#include <string>
#include <string_view>
#include <type_traits>
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

/// Whether the processor compares vectors of bytes. For another one, the compiler would make many
/// instructions for each byte of a vector: on 32-bit ARM, two fifths of those of a status request.
#if defined(__SSE2__) || defined(__ARM_NEON)
constexpr bool kHasVectors = true;
#else
constexpr bool kHasVectors = false;
#endif

/// A vector of bytes, all of which the processor compares at once.
template <std::size_t Size>
using Bytes [[gnu::vector_size(Size)]] = unsigned char;

/// Copies the bytes of one vector; returns how many come before the first that needs an escape.
/// Inlined, so that a loop keeps the constants of the comparison in registers.
template <std::size_t Size>
[[gnu::always_inline]] inline std::size_t CopyPlainBytes(const char* from, char* to) {
    Bytes<Size> bytes;
    std::memcpy(&bytes, from, Size);
    std::memcpy(to, &bytes, Size);
    const auto escaped = (bytes < 0x20) | (bytes == '"') | (bytes == '/') | (bytes == '\\') |
                         ((bytes | ('<' ^ '>')) == '>');
    using Word = std::conditional_t<(Size < sizeof(UINT_64)), UINT_32, UINT_64>;
    std::array<Word, Size / sizeof(Word)> words{};
    std::memcpy(words.data(), &escaped, Size);
    std::size_t count = 0;
    for (const Word word : words) {
        if (word != 0) {
            const int bits = std::endian::native == std::endian::little ? std::countr_zero(word)
                                                                        : std::countl_zero(word);
            return count + static_cast<std::size_t>(bits) / 8;
        }
        count += sizeof(word);
    }
    return Size;
}

/// Copies the bytes of a text that has at least the size of a vector; returns how many come before
/// the first that needs an escape. The last vector ends with the text, so it may overlap the one
/// before it.
template <std::size_t Size>
std::size_t CopyPlainText(std::string_view text, char* to) {
    const char* const from = text.data();
    const std::size_t last = text.size() - Size;
    for (std::size_t count = 0; count < last; count += Size) {
        const std::size_t plain = CopyPlainBytes<Size>(from + count, to + count);
        if (plain < Size) {
            return count + plain;
        }
    }
    return last + CopyPlainBytes<Size>(from + last, to + last);
}

/// Copies bytes up to the first that needs an escape; returns how many. It may have copied some of
/// the following bytes as well.
std::size_t CopyPlain(std::string_view text, char* to) {
    if constexpr (kHasVectors) {
        if (text.size() >= 16) {
            return CopyPlainText<16>(text, to);
        }
        if (text.size() >= 8) {
            return CopyPlainText<8>(text, to);
        }
        if (text.size() >= 4) {
            return CopyPlainText<4>(text, to);
        }
    }
    std::size_t count = 0;
    for (; count < text.size() && kEscapes[static_cast<unsigned char>(text[count])] == 0; ++count) {
        to[count] = text[count];
    }
    return count;
}

/// Bytes of the longest escape, \u00xx.
constexpr std::size_t kLongestEscape = 6;

/// Writes the escape of the byte; returns the end of what is written.
char* CopyEscape(unsigned char byte, char* to) {
    constexpr std::string_view kHexDigits = "0123456789abcdef";
    const char escape = kEscapes[byte];
    *to++ = '\\';
    *to++ = escape;
    if (escape == 'u') {
        *to++ = '0';
        *to++ = '0';
        *to++ = kHexDigits[byte >> 4U];
        *to++ = kHexDigits[byte & 0xFU];
    }
    return to;
}

/// Copies the text with escapes; returns the end of what is written.
char* CopyEscaped(std::string_view text, char* to) {
    for (;;) {
        const std::size_t plain = CopyPlain(text, to);
        to += plain;
        if (plain == text.size()) {
            return to;
        }
        to = CopyEscape(static_cast<unsigned char>(text[plain]), to);
        text.remove_prefix(plain + 1);
    }
}

/// Collects small pieces of output in a buffer and appends them to the text together, which is
/// faster than to append each one.
class Buffer {
  public:
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): bytes are read once they are written
    explicit Buffer(std::string& out) : json(out) {}

    void Put(char character) {
        char* const to = Reserve(1);
        *to = character;
        End(to + 1);
    }

    void Put(std::string_view text) {
        while (!text.empty()) {
            char* const to = Reserve(1);
            const std::size_t count = text.copy(to, room.size() - size);
            End(to + count);
            text.remove_prefix(count);
        }
    }

    void PutQuoted(std::string_view text) {
        char* to = Reserve(kLongestEscape * kPiece + 2);
        *to++ = '"';
        for (;;) {
            // Nearly every text is one piece.
            const std::string_view piece = text.substr(0, kPiece);
            to = CopyEscaped(piece, to);
            text.remove_prefix(piece.size());
            if (text.empty()) {
                break;
            }
            End(to);
            to = Reserve(kLongestEscape * kPiece + 1);
        }
        *to++ = '"';
        End(to);
    }

    /// Puts the key of a member, which follows another one unless it is the first.
    void PutKey(const CDT::Key& key, bool first) {
        const std::string_view text = key.Text();
        if (!key.IsPlain() || text.size() > kPiece) {
            if (!first) {
                Put(',');
            }
            PutQuoted(text);
            Put(':');
            return;
        }
        char* to = Reserve(text.size() + 4);
        if (!first) {
            *to++ = ',';
        }
        *to++ = '"';
        to += text.copy(to, text.size());
        *to++ = '"';
        *to++ = ':';
        End(to);
    }

    void Flush() {
        json.append(room.data(), size);
        size = 0;
    }

  private:
    /// A piece of a text fits into the empty buffer even if every byte of it needs an escape.
    static constexpr std::size_t kPiece = 512;

    /// Makes room for so many bytes and returns where they begin.
    char* Reserve(std::size_t bytes) {
        if (room.size() - size < bytes) {
            Flush();
        }
        return room.data() + size;
    }

    void End(const char* end) { size = static_cast<std::size_t>(end - room.data()); }

    std::string& json;
    std::size_t size = 0;
    std::array<char, 8192> room;
    static_assert(kLongestEscape * kPiece + 2 <= sizeof(room));
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
            if (levels.back().hash != nullptr) {
                WriteMembers(levels.back());
            } else {
                WriteElements(levels.back());
            }
        }
        json.Flush();
    }

  private:
    /// An array or a hash that is being written, and its next element or member.
    struct Level {
        const std::deque<CDT>* array = nullptr;
        std::deque<CDT>::const_iterator element{};
        const CDT::Members* hash = nullptr;
        CDT::Members::Position member = nullptr;
    };

    /// Writes elements until one of them opens a level or the array ends.
    void WriteElements(Level& level) {
        while (level.element != level.array->end()) {
            if (level.element != level.array->begin()) {
                json.Put(',');
            }
            if (WriteValue(*level.element++)) {
                return;
            }
        }
        Close(']');
    }

    /// Writes members until one of them opens a level or the hash ends.
    void WriteMembers(Level& level) {
        while (level.member != level.hash->End()) {
            const bool isFirst = level.member == level.hash->Begin();
            const auto& [key, value] = **level.member++;
            json.PutKey(key, isFirst);
            if (WriteValue(value)) {
                return;
            }
        }
        Close('}');
    }

    /// Writes a value without members, or opens a level for an array or a hash; returns whether it
    /// has opened one.
    bool WriteValue(const CDT& data) {
        if (const CDT::Text* text = std::get_if<CDT::Text>(&data.content)) {
            WriteText(*text);
        } else if (const INT_64* integer = std::get_if<INT_64>(&data.content)) {
            WriteInteger(*integer);
        } else if (const CDT::Hash* hash = data.GetHash()) {
            json.Put('{');
            levels.push_back({.hash = &hash->members, .member = hash->members.Begin()});
            return true;
        } else if (const CDT::Array* array = data.GetArray()) {
            json.Put('[');
            levels.push_back({.array = &array->elements, .element = array->elements.begin()});
            return true;
        } else if (const W_FLOAT* real = std::get_if<W_FLOAT>(&data.content);
                   real != nullptr && std::isfinite(*real)) {
            std::string digits;
            AppendReal(*real, digits);
            json.Put(digits);
        } else {
            json.Put("null");
        }
        return false;
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
