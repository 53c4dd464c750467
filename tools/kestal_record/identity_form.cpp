#include "tools/kestal_record/identity_form.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <regex>
#include <utility>

#include "tools/kestal_record/digits.h"

namespace {

bool HasCheckDigit(const std::string& digits) {
    return CheckDigit(digits.substr(0, digits.size() - 1)) == digits.back();
}

IdentityKind KindOfDigits(const std::string& digits) {
    constexpr std::size_t kEquipment = 15;
    constexpr std::size_t kEquipmentWithVersion = 16;
    switch (digits.size()) {
        case kEquipment:
            return HasCheckDigit(digits) ? IdentityKind::equipment : IdentityKind::subscriber;
        case kEquipmentWithVersion:
            return IdentityKind::equipment;
        default:
            return IdentityKind::simCard;
    }
}

bool IsAddress(int family, const std::string& text) {
    std::array<unsigned char, sizeof(in6_addr)> address{};
    return inet_pton(family, text.c_str(), address.data()) == 1;
}

/// Addresses that are the same everywhere.
bool IsOfEverybody(const std::string& text) {
    return text == "0.0.0.0" || text.starts_with("127.") || text.starts_with("255.") ||
           text == "::" || text == "::1";
}

struct Pattern {
    IdentityKind kind;
    std::regex expression;
};

/// In the order in which they are tried: a later one does not find what an earlier one has found.
const std::vector<Pattern>& Patterns() {
    static const std::vector<Pattern> kPatterns = [] {
        std::vector<Pattern> all;
        for (const auto& [kind, text] : {
                 std::pair(IdentityKind::mac,
                           R"([0-9A-Fa-f]{2}([:-])[0-9A-Fa-f]{2}(?:\1[0-9A-Fa-f]{2}){4})"),
                 std::pair(IdentityKind::ipv6, R"([0-9A-Fa-f]{0,4}(?::[0-9A-Fa-f]{0,4}){2,7})"),
                 std::pair(IdentityKind::ipv4, R"([0-9]{1,3}(?:\.[0-9]{1,3}){3})"),
                 std::pair(IdentityKind::simCard, R"(89[0-9]{16,18})"),
                 std::pair(IdentityKind::subscriber, R"([0-9]{15,16})"),
                 std::pair(IdentityKind::phone, R"(\+[0-9](?:[ ().-]{0,2}[0-9]){6,14})"),
                 std::pair(IdentityKind::phone, R"(\(?[0-9]{3}\)?[ -][0-9]{3}-[0-9]{4})"),
             }) {
            all.push_back({kind, std::regex(text, std::regex::optimize)});
        }
        return all;
    }();
    return kPatterns;
}

/// Whether @p found stands on its own rather than in the middle of a longer word or number.
bool StandsAlone(const std::string& text, const FoundIdentity& found) {
    const auto belongs = [](char character) {
        return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == ':' ||
               character == '_';
    };
    const std::size_t end = found.begin + found.length;
    const bool begins =
        found.begin == 0 || (!belongs(text[found.begin - 1]) && text[found.begin - 1] != '.');
    const bool goesOn = end < text.size() &&
                        (belongs(text[end]) ||
                         (text[end] == '.' && end + 1 < text.size() && IsDigit(text[end + 1])));
    // An address is often followed by a colon and a port.
    const bool hasPort = found.kind == IdentityKind::ipv4 && end < text.size() && text[end] == ':';
    return begins && (!goesOn || hasPort);
}

/// Whether @p text, which has the form of @p kind, is one.
bool IsReally(const std::string& text, IdentityKind kind) {
    switch (kind) {
        case IdentityKind::ipv4:
            return IsAddress(AF_INET, text) && !IsOfEverybody(text);
        case IdentityKind::ipv6:
            return IsAddress(AF_INET6, text) && !IsOfEverybody(text);
        default:
            return true;
    }
}

}  // namespace

std::vector<FoundIdentity> FindIdentities(const std::string& text) {
    std::vector<FoundIdentity> all;
    const auto overlaps = [&](const FoundIdentity& found) {
        return std::any_of(all.begin(), all.end(), [&](const FoundIdentity& one) {
            return found.begin < one.begin + one.length && one.begin < found.begin + found.length;
        });
    };
    for (const Pattern& pattern : Patterns()) {
        for (std::sregex_iterator match(text.begin(), text.end(), pattern.expression), end;
             match != end; ++match) {
            FoundIdentity found = {static_cast<std::size_t>(match->position()),
                                   static_cast<std::size_t>(match->length()), pattern.kind};
            if (StandsAlone(text, found) && !overlaps(found) &&
                IsReally(match->str(), found.kind)) {
                if (found.kind == IdentityKind::subscriber) {
                    found.kind = KindOfDigits(match->str());
                }
                all.push_back(found);
            }
        }
    }
    std::sort(all.begin(), all.end(),
              [](const auto& one, const auto& other) { return one.begin < other.begin; });
    return all;
}

IdentityKind KindOf(const std::string& text, IdentityKind otherwise) {
    const auto found = FindIdentities(text);
    return found.size() == 1 && found.front().length == text.size() ? found.front().kind
                                                                    : otherwise;
}

bool HasForm(const std::string& text, IdentityKind kind) {
    const auto letters = [](char one) {
        return std::isalpha(static_cast<unsigned char>(one)) != 0;
    };
    constexpr std::size_t kMacDigits = 12;
    switch (kind) {
        case IdentityKind::subscriber:
        case IdentityKind::simCard:
        case IdentityKind::equipment:
            return std::all_of(text.begin(), text.end(), IsDigit);
        case IdentityKind::phone:
            return std::any_of(text.begin(), text.end(), IsDigit) &&
                   std::none_of(text.begin(), text.end(), letters);
        case IdentityKind::mac:
            return Only(text, IsHexDigit).size() == kMacDigits;
        case IdentityKind::ipv4:
            return IsAddress(AF_INET, text);
        case IdentityKind::ipv6:
            return IsAddress(AF_INET6, text);
        default:
            return true;
    }
}

std::string Canonical(const std::string& text, IdentityKind kind) {
    std::string same = text;
    switch (kind) {
        case IdentityKind::phone:
            return Only(text, IsDigit);
        case IdentityKind::mac:
            same = Only(text, IsHexDigit);
            break;
        case IdentityKind::ipv6: {
            in6_addr address{};
            std::array<char, INET6_ADDRSTRLEN> canonical{};
            const bool isAddress =
                inet_pton(AF_INET6, text.c_str(), &address) == 1 &&
                inet_ntop(AF_INET6, &address, canonical.data(), canonical.size()) != nullptr;
            return isAddress ? canonical.data() : text;
        }
        case IdentityKind::host:
            break;
        default:
            return text;
    }
    std::transform(same.begin(), same.end(), same.begin(), [](char character) {
        return static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    });
    return same;
}
