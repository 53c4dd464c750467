#include "tools/kestal_record/identities.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>

#include "tools/kestal_record/document_form.h"
#include "tools/kestal_record/identity_replacement.h"

namespace {

using Path = std::vector<std::string>;

/// Shorter texts are replaced only where they are a value of their own, because inside of other
/// texts they are mostly something else.
constexpr std::size_t kShortestInside = 3;

struct NamedKind {
    std::string_view part;  ///< of the name of a configuration, in lower case
    IdentityKind kind;
};

constexpr std::array kConfigurations = {
    NamedKind{"ssid", IdentityKind::network},      NamedKind{"networkname", IdentityKind::network},
    NamedKind{"password", IdentityKind::password}, NamedKind{"passphrase", IdentityKind::password},
    NamedKind{"psk", IdentityKind::password},      NamedKind{"secret", IdentityKind::password},
    NamedKind{"token", IdentityKind::password},    NamedKind{"host", IdentityKind::host},
    NamedKind{"devicename", IdentityKind::host},   NamedKind{"imsi", IdentityKind::subscriber},
    NamedKind{"iccid", IdentityKind::simCard},     NamedKind{"imei", IdentityKind::equipment},
    NamedKind{"msisdn", IdentityKind::phone},      NamedKind{"phone", IdentityKind::phone},
    NamedKind{"mdn", IdentityKind::phone},         NamedKind{"user", IdentityKind::other},
    NamedKind{"mail", IdentityKind::other},        NamedKind{"serial", IdentityKind::other}};

/// Members of what the sources of a Linux board tell.
struct SourceMember {
    std::string_view source;
    std::string_view member;
    IdentityKind kind;
};

constexpr std::array kSourceMembers = {
    SourceMember{"clients", "mac", IdentityKind::mac},
    SourceMember{"clients", "address", IdentityKind::ipv4},
    SourceMember{"clients", "name", IdentityKind::host},
    SourceMember{"wifi", "network", IdentityKind::network},
    SourceMember{"guest-wifi", "network", IdentityKind::network},
    SourceMember{"messages", "sender", IdentityKind::phone},
    SourceMember{"messages", "text", IdentityKind::message},
    SourceMember{"modem", "subscriber", IdentityKind::subscriber},
    // Digests of messages, from which a text that is guessed could be confirmed.
    SourceMember{"messages", "key", IdentityKind::other}};

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char character) {
        return static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    });
    return text;
}

/// Whether @p value is that of a switch rather than an identity, whatever its name.
bool IsSwitch(const std::string& value) {
    constexpr std::size_t kLongestNumber = 2;
    const std::string text = Lower(value);
    return value.size() <= kLongestNumber || text == "true" || text == "false" || text == "yes" ||
           text == "off" || text == "enabled" || text == "disabled";
}

/// What the value of the configuration @p name identifies.
std::optional<IdentityKind> KindOfConfiguration(const std::string& name) {
    const std::string text = Lower(name);
    const auto* const found = std::find_if(
        kConfigurations.begin(), kConfigurations.end(),
        [&](const NamedKind& one) { return text.find(one.part) != std::string::npos; });
    return found == kConfigurations.end() ? std::nullopt : std::optional(found->kind);
}

bool IsWordPart(char character) {
    constexpr unsigned kAscii = 0x80;
    const auto byte = static_cast<unsigned char>(character);
    return std::isalnum(byte) != 0 || byte >= kAscii || character == '_';
}

/// Whether the part of @p text at @p begin is a word of its own, or several.
bool IsOnWordBounds(const std::string& text, std::size_t begin, std::size_t length) {
    const std::size_t end = begin + length;
    const bool begins = begin == 0 || !IsWordPart(text[begin]) || !IsWordPart(text[begin - 1]);
    const bool ends = end == text.size() || !IsWordPart(text[end - 1]) || !IsWordPart(text[end]);
    return begins && ends;
}

/// Whether @p path leads to a text that has the form of an address but is none.
bool IsVersion(const Path& path) {
    return !path.empty() && path.back().ends_with("version");
}

}  // namespace

void Identities::Learn(const std::string& text, IdentityKind kind) {
    if (!text.empty()) {
        const IdentityKind likely = KindOf(text, kind);
        learned.emplace_back(text, HasForm(text, likely) ? likely : IdentityKind::other);
    }
}

void Identities::LearnFrom(const std::string& text) {
    for (const FoundIdentity& found : FindIdentities(text)) {
        learned.emplace_back(text.substr(found.begin, found.length), found.kind);
    }
}

void Identities::LearnFromRecording(const Json& recorded) {
    VisitTexts(recorded, [this](const Path& path, const std::string& text) {
        const auto leadsThrough = [&](const std::string& name) {
            return std::any_of(path.begin(), path.end(), [&](const std::string& step) {
                return step.find(name) != std::string::npos;
            });
        };
        if (IsVersion(path)) {
            return;
        }
        if (leadsThrough("getSubscriberInfo")) {
            // Not by its form, because some IMSIs also have the check digit of an IMEI.
            if (!text.empty()) {
                const auto kind = IdentityKind::subscriber;
                learned.emplace_back(text, HasForm(text, kind) ? kind : IdentityKind::other);
            }
            return;
        }
        if (leadsThrough("Configurations") && !IsSwitch(text)) {
            if (const auto kind = KindOfConfiguration(path.back())) {
                Learn(text, *kind);
                return;
            }
        }
        LearnFrom(text);
    });
}

void Identities::LearnFromSources(const Json& sources) {
    const auto learn = [this](const auto& self, const std::string& source, const std::string& name,
                              const Json& value) -> void {
        if (value.is_structured()) {
            for (const auto& item : value.items()) {
                self(self, source, value.is_object() ? item.key() : name, item.value());
            }
            return;
        }
        if (!value.is_string()) {
            return;
        }
        const auto* const member = std::find_if(
            kSourceMembers.begin(), kSourceMembers.end(),
            [&](const SourceMember& one) { return one.source == source && one.member == name; });
        const auto& text = value.get_ref<const std::string&>();
        if (member != kSourceMembers.end()) {
            Learn(text, member->kind);
        } else {
            LearnFrom(text);
        }
    };
    for (const Json& source : sources) {
        const auto name = source.value("name", "");
        for (const char* const part : {"said", "reason"}) {
            if (source.contains(part)) {
                learn(learn, name, part, source.at(part));
            }
        }
    }
}

void Identities::Settle() {
    if (isSettled) {
        return;
    }
    isSettled = true;
    for (const auto& [text, kind] : learned) {
        replacements.emplace(text, "");
        originals.emplace(kind, Canonical(text, kind));
    }
    for (const auto& [text, kind] : learned) {
        std::string& replacement = replacements.at(text);
        if (replacement.empty()) {
            replacement = Replacement(text, kind, NumberOf(text, kind));
        }
    }
}

std::uint64_t Identities::NumberOf(const std::string& text, IdentityKind kind) {
    const Identity identity(kind, Canonical(text, kind));
    if (const auto known = numbers.find(identity); known != numbers.end()) {
        return known->second;
    }
    // A replacement must be neither another identity of this recording nor used for another one.
    // Where the form leaves room for a few only, this cannot be avoided.
    constexpr int kTries = 1000;
    std::uint64_t& count = counts[kind];
    for (int attempt = 0; attempt < kTries; ++attempt) {
        ++count;
        const std::string replacement = Replacement(text, kind, count);
        if (!replacements.contains(replacement) &&
            !originals.contains({kind, Canonical(replacement, kind)}) &&
            used.insert(replacement).second) {
            break;
        }
    }
    return numbers[identity] = count;
}

std::string Identities::Replaced(const std::string& text) {
    Settle();
    if (const auto whole = replacements.find(text); whole != replacements.end()) {
        return whole->second;
    }
    std::string result;
    std::size_t position = 0;
    while (position < text.size()) {
        const std::pair<const std::string, std::string>* longest = nullptr;
        for (const auto& one : replacements) {
            const std::size_t length = one.first.size();
            if (length >= kShortestInside &&
                (longest == nullptr || length > longest->first.size()) &&
                text.compare(position, length, one.first) == 0 &&
                IsOnWordBounds(text, position, length)) {
                longest = &one;
            }
        }
        if (longest == nullptr) {
            result += text[position++];
        } else {
            result += longest->second;
            position += longest->first.size();
        }
    }
    return result;
}

Json Identities::ReplacedIn(const Json& value) {
    if (value.is_string()) {
        return Replaced(value.get<std::string>());
    }
    if (!value.is_structured()) {
        return value;
    }
    Json result = value;
    for (Json& one : result) {
        one = ReplacedIn(one);
    }
    return result;
}
