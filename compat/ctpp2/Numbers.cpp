#include "Numbers.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <system_error>

namespace CTPP {
namespace {

bool StartsWithAny(std::string_view text, std::string_view characters) {
    return !text.empty() && characters.find(text.front()) != std::string_view::npos;
}

/// Removes the leading digits and tells how many there were.
std::size_t TakeDigits(std::string_view& text) {
    const std::size_t count = std::min(text.find_first_not_of("0123456789"), text.size());
    text.remove_prefix(count);
    return count;
}

/// Removes the first character if it is one of these.
bool TakeOneOf(std::string_view& text, std::string_view characters) {
    const bool found = StartsWithAny(text, characters);
    text.remove_prefix(found ? 1 : 0);
    return found;
}

std::string_view WithoutPlus(std::string_view text) {
    TakeOneOf(text, "+");
    return text;
}

std::int64_t ToInteger(std::string_view text) {
    const std::string_view number = WithoutPlus(text);
    std::int64_t value = 0;
    const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        return number.front() == '-' ? std::numeric_limits<std::int64_t>::min()
                                     : std::numeric_limits<std::int64_t>::max();
    }
    return value;
}

/// Whether the number of this text, which is outside the range of a double, is too small (rather
/// than too large).
bool IsTiny(std::string_view text) {
    const std::size_t exponent = text.find_first_of("eE");
    if (exponent != std::string_view::npos) {
        return text[exponent + 1] == '-';
    }
    TakeOneOf(text, "+-");
    return StartsWithAny(text, "0.");
}

double ToReal(std::string_view text) {
    const std::string_view number = WithoutPlus(text);
    double value = 0;
    const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        const double limit = IsTiny(number) ? 0 : std::numeric_limits<double>::infinity();
        return number.front() == '-' ? -limit : limit;
    }
    return value;
}

}  // namespace

void AppendInteger(std::int64_t value, std::string& out) {
    std::array<char, 24> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    out.append(buffer.data(), result.ptr);
}

void AppendReal(double value, std::string& out) {
    constexpr int kSignificantDigits = 12;
    std::array<char, 32> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                      std::chars_format::general, kSignificantDigits);
    for (const char* c = buffer.data(); c != result.ptr; ++c) {
        const bool lower = *c >= 'a' && *c <= 'z';
        out += lower ? static_cast<char>(*c - 'a' + 'A') : *c;
    }
}

std::int64_t Truncate(double value) {
    constexpr double kTwoTo63 = 9223372036854775808.0;
    if (value >= kTwoTo63) {
        return std::numeric_limits<std::int64_t>::max();
    }
    if (value < -kTwoTo63) {
        return std::numeric_limits<std::int64_t>::min();
    }
    return value == value ? static_cast<std::int64_t>(value) : 0;
}

std::variant<std::monostate, std::int64_t, double> ParseNumber(std::string_view text) {
    constexpr double kNoNumber = 0;
    std::string_view rest = text;
    TakeOneOf(rest, "+-");
    const bool whole = TakeDigits(rest) > 0;
    if (rest.empty()) {
        return ToInteger(text);
    }
    const bool point = TakeOneOf(rest, ".");
    const bool fraction = point && TakeDigits(rest) > 0;
    if (!whole && !fraction) {
        return kNoNumber;
    }
    if (TakeOneOf(rest, "eE")) {
        TakeOneOf(rest, "+-");
        if (TakeDigits(rest) == 0) {
            return kNoNumber;
        }
        if (!rest.empty()) {
            return std::monostate{};
        }
        return ToReal(text);
    }
    return rest.empty() && fraction ? ToReal(text) : kNoNumber;
}

bool IsJSONNumber(std::string_view text) {
    TakeOneOf(text, "-");
    if (!TakeOneOf(text, "0") && TakeDigits(text) == 0) {
        return false;
    }
    if (TakeOneOf(text, ".") && TakeDigits(text) == 0) {
        return false;
    }
    if (TakeOneOf(text, "eE")) {
        TakeOneOf(text, "+-");
        if (TakeDigits(text) == 0) {
            return false;
        }
    }
    return text.empty();
}

}  // namespace CTPP
