#include "tools/kestal_record/identities.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <nlohmann/json.hpp>
#include <string_view>

#include "tools/kestal_record/digits.h"
#include "tools/kestal_record/document_form.h"
#include "tools/kestal_record/identity_replacement.h"

namespace {

using Path = std::vector<std::string>;

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

bool IsAt(const std::string& text, std::size_t position, const std::string& part,
          bool ignoresCase) {
    const auto lower = [](char one) { return std::tolower(static_cast<unsigned char>(one)); };
    return part.size() <= text.size() - position &&
           std::equal(part.begin(), part.end(),
                      text.begin() + static_cast<std::ptrdiff_t>(position),
                      [&](char one, char other) {
                          return one == other || (ignoresCase && lower(one) == lower(other));
                      });
}

/// @p replacement in place of @p length bytes.
std::string Fitted(std::string replacement, std::size_t length, TextLayout layout) {
    if (layout == TextLayout::block) {
        replacement.resize(length, ' ');
    }
    return replacement;
}

/// Calls @p visit(word) for each word of @p text that may be a MAC address without separators.
template <typename Visit>
void VisitMacWords(const std::string& text, Visit visit) {
    constexpr std::size_t kDigits = 12;
    for (std::size_t end = 0; end < text.size();) {
        const std::size_t begin = end;
        while (end < text.size() && IsWordPart(text[end])) {
            ++end;
        }
        const std::string word = text.substr(begin, end - begin);
        if (word.size() == kDigits && std::all_of(word.begin(), word.end(), IsHexDigit)) {
            visit(word);
        }
        end = std::max(end, begin + 1);
    }
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

void Identities::LearnFromLog(const std::string& line) {
    LearnFrom(line);
    // Whoever has the identifier of a session has the rights of its user.
    constexpr std::string_view kBefore = "sessionId ";
    std::size_t begin = 0;
    while ((begin = line.find(kBefore, begin)) != std::string::npos) {
        begin += kBefore.size();
        Learn(line.substr(begin, line.find(' ', begin) - begin), IdentityKind::other);
    }
}

void Identities::LearnFromRecording(const Json& recorded) {
    VisitTexts(recorded, [this](const Path& path, const std::string& text) {
        const TextPlace place = PlaceOf(path, text);
        if (place.mayHoldMac) {
            VisitMacWords(text, [this](const std::string& word) {
                learned.emplace_back(word, IdentityKind::mac);
            });
        }
        if (place.use == TextUse::identity && place.kind == IdentityKind::subscriber) {
            // Not by its form, because some IMSIs also have the check digit of an IMEI.
            if (!text.empty()) {
                const bool hasForm = HasForm(text, place.kind);
                learned.emplace_back(text, hasForm ? place.kind : IdentityKind::other);
            }
        } else if (place.use == TextUse::identity) {
            Learn(text, place.kind);
        } else if (place.use != TextUse::version) {
            LearnFrom(text);
        }
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
        Substitute& substitute = replacements[text];
        substitute.ignoresCase |= kind == IdentityKind::host || kind == IdentityKind::mac;
        originals.emplace(kind, Canonical(text, kind));
    }
    for (const auto& [text, kind] : learned) {
        std::string& replacement = replacements.at(text).text;
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

std::string Identities::Replaced(const std::string& text, TextLayout layout) {
    Settle();
    if (const auto whole = replacements.find(text); whole != replacements.end()) {
        return Fitted(whole->second.text, text.size(), layout);
    }
    std::string result;
    std::size_t position = 0;
    while (position < text.size()) {
        const std::pair<const std::string, Substitute>* longest = nullptr;
        for (const auto& one : replacements) {
            const std::size_t length = one.first.size();
            if ((longest == nullptr || length > longest->first.size()) &&
                IsAt(text, position, one.first, one.second.ignoresCase) &&
                IsOnWordBounds(text, position, length) && !IsCommon(one.first)) {
                longest = &one;
            }
        }
        if (longest == nullptr) {
            result += text[position++];
        } else {
            const std::size_t length = longest->first.size();
            result += Fitted(longest->second.text, length, layout);
            position += length;
        }
    }
    return result;
}

std::string Identities::ReplacedAt(const Path& path, const std::string& text, TextLayout layout) {
    switch (PlaceOf(path, text).use) {
        case TextUse::version:
            return text;
        case TextUse::structure:
            return ReplacedByForm(text, layout);
        case TextUse::identity:
            return Replaced(text, layout);
        case TextUse::other:
            break;
    }
    return IsCommon(text) ? text : Replaced(text, layout);
}

std::string Identities::ReplacedByForm(const std::string& text, TextLayout layout) {
    Settle();
    std::string result;
    std::size_t position = 0;
    for (const FoundIdentity& found : FindIdentities(text)) {
        const std::string identity = text.substr(found.begin, found.length);
        const auto known = replacements.find(identity);
        result += text.substr(position, found.begin - position);
        result += known == replacements.end() ? identity
                                              : Fitted(known->second.text, identity.size(), layout);
        position = found.begin + found.length;
    }
    return result + text.substr(position);
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
