#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "CTPP2Exception.hpp"

typedef std::int16_t INT_16;
typedef std::uint16_t UINT_16;
typedef std::int32_t INT_32;
typedef std::uint32_t UINT_32;
typedef std::int64_t INT_64;
typedef std::uint64_t UINT_64;
typedef double W_FLOAT;
typedef char CHAR_8;
typedef unsigned char UCHAR_8;
typedef const char CCHAR_8;
typedef const unsigned char UCCHAR_8;
typedef char* CHAR_P;
typedef unsigned char* UCHAR_P;
typedef const char* CCHAR_P;
typedef const unsigned char* UCCHAR_P;

namespace CTPP {

/// A value of one of several types: nothing, a number, a text, an array or a hash of such values.
/// Copies are independent of each other. A reference to a member stays valid while the container
/// grows. Numeric reads of a text change it (see GetInt), so that even a tree that is only read
/// must not be shared between threads without a lock.
class CDT {
  public:
    enum eValType {
        UNDEF = 0x01,
        INT_VAL = 0x02,
        REAL_VAL = 0x04,
        POINTER_VAL = 0x08,
        STRING_VAL = 0x10,
        STRING_INT_VAL = 0x12,
        STRING_REAL_VAL = 0x14,
        ARRAY_VAL = 0x20,
        HASH_VAL = 0x40
    };

    class Iterator;
    class ConstIterator;
    class Key;

    /// The text of a key, which this object does not own, and the first sixteen bytes of it as two
    /// numbers: comparing these decides the order of most keys. A shorter text is filled up with
    /// NUL.
    class KeyText {
      public:
        constexpr explicit KeyText(std::string_view key) : text(key) {
            constexpr std::size_t kWord = sizeof(first);
            for (std::size_t byte = 0; byte < 2 * kWord; ++byte) {
                UINT_64& word = byte < kWord ? first : second;
                word =
                    word << 8U | (byte < key.size() ? static_cast<unsigned char>(key[byte]) : 0U);
            }
        }
        operator std::string_view() const { return text; }
        friend bool operator==(const KeyText& one, const KeyText& other) {
            return one.first == other.first && one.second == other.second && one.text == other.text;
        }
        friend bool operator<(const KeyText& one, const KeyText& other) {
            if (one.first != other.first) {
                return one.first < other.first;
            }
            return one.second != other.second ? one.second < other.second : one.text < other.text;
        }

      private:
        std::string_view text;
        UINT_64 first = 0;
        UINT_64 second = 0;
    };

    /// A key that is known to the compiler and exists as long as the program: a literal, or a
    /// constexpr array that is not local. It ends at its first NUL.
    class LiteralKey {
      public:
        template <class Array,
                  class = std::enable_if_t<std::same_as<Array, const char[sizeof(Array)]>>>
        consteval LiteralKey(Array& literal)
            : text(std::string_view(literal)), plain(IsPlain(std::string_view(literal))) {}

      private:
        friend class CDT;

        static consteval bool IsPlain(std::string_view key) {
            for (const char character : key) {
                const bool letter = (character >= 'a' && character <= 'z') ||
                                    (character >= 'A' && character <= 'Z');
                if (!letter && character != '_' && !(character >= '0' && character <= '9')) {
                    return false;
                }
            }
            return true;
        }

        KeyText text;
        bool plain;
    };

    CDT() noexcept;
    /// An empty value of the type: 0, "", an array or hash without members.
    CDT(const eValType& type);
    CDT(const CDT& other);
    /// `other` becomes UNDEF.
    CDT(CDT&& other) noexcept;
    CDT(INT_64 value);
    /// Stored signed; GetUInt() gives the value back.
    CDT(UINT_64 value);
    CDT(INT_32 value);
    CDT(UINT_32 value);
    CDT(W_FLOAT value);
    CDT(const std::string& value);
    CDT(std::string&& value);
    /// Throws std::logic_error for a null pointer.
    CDT(CCHAR_P value);
    CDT(void* value);
    ~CDT();

    /// Assignment replaces the value whatever its type was. The source may be a part of this tree.
    CDT& operator=(const CDT& other);
    CDT& operator=(CDT&& other) noexcept;
    CDT& operator=(INT_64 value);
    CDT& operator=(UINT_64 value);
    CDT& operator=(INT_32 value);
    CDT& operator=(UINT_32 value);
    CDT& operator=(W_FLOAT value);
    CDT& operator=(const std::string& value);
    CDT& operator=(std::string&& value);
    /// Throws std::logic_error for a null pointer and leaves the value as it was.
    CDT& operator=(CCHAR_P value);
    CDT& operator=(void* value);

    /// The element; UNDEF becomes an array, an array grows up to the index. Throws
    /// CDTAccessException for any other type, CDTRangeException for an absurd index.
    CDT& operator[](UINT_32 index);
    /// The member, inserted if missing; UNDEF becomes a hash. Throws CDTAccessException for any
    /// other type.
    template <class = void>
    CDT& operator[](const std::string& key) {
        return GetOrInsert(key);
    }
    /// The same for a key that need not be copied. For a literal, the compiler prefers this
    /// overload because it is not a template.
    CDT& operator[](const LiteralKey& key) { return GetOrInsert(key); }
    /// The element, or UNDEF if this is no array. Throws CDTRangeException past the end.
    const CDT& operator[](UINT_32 index) const;
    /// The member, or UNDEF if it is missing or this is no hash.
    const CDT& operator[](const std::string& key) const;

    /// The const operator[].
    const CDT& GetCDT(UINT_32 index) const;
    const CDT& GetCDT(const std::string& key) const;
    /// The member, or UNDEF; `exists` tells which.
    const CDT& GetExistedCDT(const std::string& key, bool& exists) const;

    /// An element or member that exists. Throws CDTRangeException if it does not,
    /// CDTAccessException if this is not an array, or not a hash.
    CDT& At(UINT_32 index);
    CDT& At(const std::string& key);

    /// Tells whether the element or member is there, even if it is UNDEF. Throws
    /// CDTAccessException if this is not an array, or not a hash (UNDEF included).
    bool Exists(UINT_32 index) const;
    bool Exists(const std::string& key) const;

    /// Removes a member and tells whether it was there. Throws CDTAccessException if this is no
    /// hash.
    bool Erase(const std::string& key);

    /// Appends an element; UNDEF becomes an array. Throws CDTAccessException for any other type,
    /// std::logic_error for a null text.
    void PushBack(INT_64 value);
    void PushBack(UINT_64 value);
    void PushBack(INT_32 value);
    void PushBack(UINT_32 value);
    void PushBack(W_FLOAT value);
    void PushBack(const std::string& value);
    void PushBack(CCHAR_P value);
    void PushBack(const CDT& value);
    void PushBack(CDT&& value);

    /// The value as a number. A text counts if the whole of it is a decimal number, otherwise it is
    /// 0; reals are truncated and clamped; anything else is 0. Reading a text retypes it to
    /// STRING_INT_VAL or STRING_REAL_VAL, and CDT2JSON then writes it without quotes where it is a
    /// JSON number.
    INT_64 GetInt() const;
    UINT_64 GetUInt() const;
    W_FLOAT GetFloat() const;

    /// The value as text: integers in decimal, reals with 12 significant digits, "" for UNDEF, type
    /// and address for an array or a hash.
    std::string GetString() const;

    /// Reads the value and converts this object to what was read.
    INT_64 ToInt();
    W_FLOAT ToFloat();
    std::string ToString();

    eValType GetType() const;
    CCHAR_P PrintableType() const;
    static CCHAR_P PrintableType(eValType type);

    /// Elements of an array, members of a hash, bytes of a text, otherwise 0.
    UINT_32 Size() const;
    /// True for a number other than 0, a pointer other than null, and what has a size above 0.
    bool Nonzero() const;

    /// Appends to a text. A number is converted to text first, UNDEF becomes the text. Throws
    /// CDTTypeCastException for any other type.
    CDT& Append(const std::string& text);

    /// The members of a hash in byte order of their keys. Throws CDTAccessException for any other
    /// type. Inserting or erasing a member ends all iterators of the hash.
    Iterator Begin();
    Iterator End();
    ConstIterator Begin() const;
    ConstIterator End() const;

    void Swap(CDT& other) noexcept;

  private:
    friend class JSONWriter;

    /// What a text was read as; std::monostate before the first numeric read.
    using Number = std::variant<std::monostate, INT_64, W_FLOAT>;

    struct Text {
        explicit Text(std::string&& text, Number read = {}) noexcept
            : value(std::move(text)), number(read) {}

        std::string value;
        mutable Number number;
    };
    struct Branch;
    struct Array;
    struct Hash;
    using ArrayPtr = std::unique_ptr<Array>;
    using HashPtr = std::unique_ptr<Hash>;
    using Value = std::variant<std::monostate, INT_64, W_FLOAT, void*, Text, ArrayPtr, HashPtr>;
    struct Member;
    class Members;
    using Copies = std::vector<std::pair<const CDT*, CDT*>>;

    static const CDT& Undefined();

    /// Whether the value is an array or a hash.
    bool HasBranch() const {
        return std::holds_alternative<ArrayPtr>(content) ||
               std::holds_alternative<HashPtr>(content);
    }
    Number ReadNumber() const;
    const Array* GetArray() const;
    const Hash* GetHash() const;
    CDT& GetOrInsert(const std::string& key);
    CDT& GetOrInsert(const LiteralKey& key);
    Array& MakeArray();
    Hash& MakeHash();
    void CopyShallow(const CDT& other, Copies& branches);
    void Unhook(std::unique_ptr<Branch>& chain) noexcept;

    Value content;
};

/// The key of a member.
class CDT::Key {
  public:
    explicit Key(const LiteralKey& literal) noexcept : text(literal.text), plain(literal.plain) {}
    explicit Key(std::string_view other);
    Key(const Key& other);
    Key(Key&& other) noexcept
        : copy(std::move(other.copy)),
          text(std::exchange(other.text, KeyText(std::string_view()))),
          plain(other.plain) {}
    Key& operator=(const Key& other) { return *this = Key(other); }
    Key& operator=(Key&& other) noexcept {
        std::swap(copy, other.copy);
        std::swap(text, other.text);
        std::swap(plain, other.plain);
        return *this;
    }
    ~Key() = default;

    const KeyText& Text() const { return text; }
    /// Whether the key is known to have only letters, digits and underscores.
    bool IsPlain() const { return plain; }
    operator std::string() const { return std::string(std::string_view(text)); }
    friend bool operator==(const Key& one, const Key& other) { return one.text == other.text; }
    friend bool operator==(const Key& one, std::string_view other) {
        return std::string_view(one.text) == other;
    }

  private:
    /// Empty if the text is a literal.
    std::unique_ptr<char[]> copy;
    KeyText text;
    bool plain = false;
};

struct CDT::Member {
    explicit Member(const LiteralKey& key) noexcept : first(key) {}
    explicit Member(Key&& key) noexcept : first(std::move(key)) {}

    const Key first;
    CDT second;
};

/// Walks the members of a hash: `->first` is the key, `->second` the value.
class CDT::Iterator {
  public:
    using Position = Member* const*;

    explicit Iterator(Position start) : position(start) {}
    Member* operator->() const { return *position; }
    Iterator& operator++() {
        ++position;
        return *this;
    }
    Iterator operator++(int) { return Iterator(position++); }
    bool operator==(const Iterator& other) const { return position == other.position; }

  private:
    friend class ConstIterator;
    Position position;
};

/// The same for a hash that must not change.
class CDT::ConstIterator {
  public:
    using Position = Member* const*;

    explicit ConstIterator(Position start) : position(start) {}
    ConstIterator(const Iterator& other) : position(other.position) {}
    const Member* operator->() const { return *position; }
    ConstIterator& operator++() {
        ++position;
        return *this;
    }
    ConstIterator operator++(int) { return ConstIterator(position++); }
    bool operator==(const ConstIterator& other) const { return position == other.position; }

  private:
    Position position;
};

}  // namespace CTPP
