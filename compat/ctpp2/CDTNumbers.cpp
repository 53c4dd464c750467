#include <array>
#include <charconv>
#include <cstdint>
#include <string>

#include "Branches.hpp"
#include "Numbers.hpp"

namespace CTPP {
namespace {

void AppendAddress(const void* address, std::string& out) {
    std::array<char, 2 * sizeof(address)> buffer{};
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the text is the address
    const auto number = reinterpret_cast<std::uintptr_t>(address);
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, 16);
    out.append("0x").append(buffer.data(), result.ptr);
}

std::string Describe(CCHAR_P type, const void* address) {
    std::string text = type;
    text += " (";
    AppendAddress(address, text);
    text += ')';
    return text;
}

}  // namespace

CDT::Number CDT::ReadNumber() const {
    if (const INT_64* integer = std::get_if<INT_64>(&content)) {
        return *integer;
    }
    if (const W_FLOAT* real = std::get_if<W_FLOAT>(&content)) {
        return *real;
    }
    if (void* const* pointer = std::get_if<void*>(&content)) {
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): only the address is read
        return static_cast<INT_64>(reinterpret_cast<std::intptr_t>(*pointer));
    }
    if (const Text* text = std::get_if<Text>(&content)) {
        if (std::holds_alternative<std::monostate>(text->number)) {
            text->number = ParseNumber(text->value);
        }
        return text->number;
    }
    return std::monostate{};
}

INT_64 CDT::GetInt() const {
    const Number number = ReadNumber();
    if (const W_FLOAT* real = std::get_if<W_FLOAT>(&number)) {
        return Truncate(*real);
    }
    const INT_64* integer = std::get_if<INT_64>(&number);
    return integer != nullptr ? *integer : 0;
}

UINT_64 CDT::GetUInt() const {
    return static_cast<UINT_64>(GetInt());
}

W_FLOAT CDT::GetFloat() const {
    const Number number = ReadNumber();
    if (const INT_64* integer = std::get_if<INT_64>(&number)) {
        return static_cast<W_FLOAT>(*integer);
    }
    const W_FLOAT* real = std::get_if<W_FLOAT>(&number);
    return real != nullptr ? *real : 0;
}

std::string CDT::GetString() const {
    std::string out;
    if (const Text* text = std::get_if<Text>(&content)) {
        out = text->value;
    } else if (const INT_64* integer = std::get_if<INT_64>(&content)) {
        AppendInteger(*integer, out);
    } else if (const W_FLOAT* real = std::get_if<W_FLOAT>(&content)) {
        AppendReal(*real, out);
    } else if (void* const* pointer = std::get_if<void*>(&content)) {
        if (*pointer == nullptr) {
            out = "(nil)";
        } else {
            AppendAddress(*pointer, out);
        }
    } else if (const Array* array = GetArray()) {
        out = Describe(PrintableType(), array);
    } else if (const Hash* hash = GetHash()) {
        out = Describe(PrintableType(), hash);
    }
    return out;
}

INT_64 CDT::ToInt() {
    const INT_64 number = GetInt();
    *this = number;
    return number;
}

W_FLOAT CDT::ToFloat() {
    const W_FLOAT number = GetFloat();
    *this = number;
    return number;
}

std::string CDT::ToString() {
    std::string text = GetString();
    *this = text;
    return text;
}

CDT& CDT::Append(const std::string& text) {
    switch (GetType()) {
        case ARRAY_VAL:
        case HASH_VAL:
        case POINTER_VAL:
            throw CDTTypeCastException("Append");
        case UNDEF:
        case INT_VAL:
        case REAL_VAL:
            *this = GetString();
            break;
        case STRING_VAL:
        case STRING_INT_VAL:
        case STRING_REAL_VAL:
            break;
    }
    std::get<Text>(content).value += text;
    return *this;
}

}  // namespace CTPP
