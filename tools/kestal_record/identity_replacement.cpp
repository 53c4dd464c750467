#include "tools/kestal_record/identity_replacement.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <iterator>
#include <string_view>

#include "tools/kestal_record/digits.h"

namespace {

/// @p form with the digits of @p digits in place of those that @p is finds.
template <typename Is>
std::string WithDigits(std::string form, const std::string& digits, Is is) {
    std::size_t next = 0;
    for (char& character : form) {
        if (is(character)) {
            character = digits[next++];
        }
    }
    return form;
}

/// @p number in @p width digits: the last ones if it has more.
std::string Padded(std::uint64_t number, std::size_t width, unsigned base = 10) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text(width, '0');
    for (auto digit = text.rbegin(); digit != text.rend() && number != 0; ++digit) {
        // cppcheck-suppress zerodivcond ; no base is 0
        *digit = kDigits[static_cast<std::size_t>(number % base)];
        number /= base;
    }
    return text;
}

std::string Number(std::string_view prefix, std::uint64_t number, std::size_t width,
                   bool hasCheckDigit) {
    const std::size_t own = width - (hasCheckDigit ? 1 : 0);
    const std::size_t kept = own > prefix.size() + 2 ? prefix.size() : 0;
    std::string digits = std::string(prefix.substr(0, kept)) + Padded(number, own - kept);
    if (hasCheckDigit) {
        digits += CheckDigit(digits);
    }
    return digits;
}

/// Counts through the addresses whose numbers have as many digits as those of @p form.
std::string Ipv4(const std::string& form, std::uint64_t number) {
    std::string result;
    std::size_t end = form.size();
    while (true) {
        const std::size_t dot = end == 0 ? std::string::npos : form.rfind('.', end - 1);
        const std::size_t begin = dot == std::string::npos ? 0 : dot + 1;
        constexpr std::array<std::uint64_t, 4> kLeast = {0, 0, 10, 100};
        constexpr std::array<std::uint64_t, 4> kCount = {1, 10, 90, 100};
        const std::size_t digits = end - begin;
        result.insert(0, std::to_string(kLeast.at(digits) + number % kCount.at(digits)));
        number /= kCount.at(digits);
        if (begin == 0) {
            return result;
        }
        result.insert(0, ".");
        end = dot;
    }
}

/// Counts through addresses of a link if @p form is one, otherwise through those that are reserved
/// for documentation.
std::string Ipv6(const std::string& form, std::uint64_t number) {
    in6_addr original{};
    (void)inet_pton(AF_INET6, form.c_str(), &original);
    in6_addr address{};
    const bool isOfLink = IN6_IS_ADDR_LINKLOCAL(&original);
    (void)inet_pton(AF_INET6, isOfLink ? "fe80::" : "2001:db8::", &address);
    constexpr unsigned kByte = 8;
    for (auto* byte = std::end(address.s6_addr); number != 0; number >>= kByte) {
        *--byte = static_cast<std::uint8_t>(number);
    }
    std::array<char, INET6_ADDRSTRLEN> text{};
    return inet_ntop(AF_INET6, &address, text.data(), text.size());
}

/// A word and a number with as many characters as @p form; the number is always whole.
std::string Word(std::string_view word, const std::string& form, std::uint64_t number) {
    // Bytes that continue a character do not count.
    constexpr unsigned kContinuation = 0x80;
    constexpr unsigned kMask = 0xC0;
    const auto length =
        static_cast<std::size_t>(std::count_if(form.begin(), form.end(), [](char character) {
            return (static_cast<unsigned char>(character) & kMask) != kContinuation;
        }));
    const std::string digits = std::to_string(number);
    const std::size_t room = length > digits.size() ? length - digits.size() : 0;
    std::string text(word.substr(0, std::min(word.size(), room)));
    text.append(room - text.size(), '0');
    return text + digits;
}

}  // namespace

std::string Replacement(const std::string& form, IdentityKind kind, std::uint64_t number) {
    const auto digits = static_cast<std::size_t>(std::count_if(form.begin(), form.end(), IsDigit));
    constexpr unsigned kHexadecimal = 16;
    constexpr std::size_t kMacDigits = 6;
    switch (kind) {
        case IdentityKind::subscriber:
            // The network of this number is reserved for tests.
            return Number("00101", number, digits, false);
        case IdentityKind::simCard:
            return Number("89", number, digits, true);
        case IdentityKind::equipment: {
            constexpr std::size_t kWithCheckDigit = 15;
            return Number("", number, digits, digits == kWithCheckDigit);
        }
        case IdentityKind::phone:
            return WithDigits(form, Number("555", number, digits, false), IsDigit);
        case IdentityKind::mac: {
            // An address that is given out locally.
            std::string replaced =
                WithDigits(form, "02005e" + Padded(number, kMacDigits, kHexadecimal), IsHexDigit);
            if (std::any_of(form.begin(), form.end(), [](char one) { return std::isupper(one); })) {
                std::transform(replaced.begin(), replaced.end(), replaced.begin(), [](char one) {
                    return static_cast<char>(std::toupper(static_cast<unsigned char>(one)));
                });
            }
            return replaced;
        }
        case IdentityKind::ipv4:
            return Ipv4(form, number);
        case IdentityKind::ipv6:
            return Ipv6(form, number);
        case IdentityKind::network:
            return Word("network", form, number);
        case IdentityKind::host:
            return Word("host", form, number);
        case IdentityKind::password:
            return Word("password", form, number);
        case IdentityKind::message:
            return Word("message", form, number);
        case IdentityKind::other:
            break;
    }
    return Word("identity", form, number);
}
