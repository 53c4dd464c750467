#include "tools/kestal_record/text_place.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

#include "tools/kestal_record/digits.h"

namespace {

using Path = std::vector<std::string>;

/// Part of the name of a configuration, in lower case.
struct NamedKind {
    std::string_view part;
    IdentityKind kind;
    bool countsAtTheEndOnly = false;
};

constexpr std::array kConfigurations = {
    NamedKind{"ssid", IdentityKind::network},       NamedKind{"networkname", IdentityKind::network},
    NamedKind{"wlanname", IdentityKind::network},   NamedKind{"wifiname", IdentityKind::network},
    NamedKind{"password", IdentityKind::password},  NamedKind{"passphrase", IdentityKind::password},
    NamedKind{"psk", IdentityKind::password},       NamedKind{"secret", IdentityKind::password},
    NamedKind{"token", IdentityKind::password},     NamedKind{"key", IdentityKind::password, true},
    NamedKind{"pin", IdentityKind::password, true}, NamedKind{"puk", IdentityKind::password, true},
    NamedKind{"host", IdentityKind::host},          NamedKind{"devicename", IdentityKind::host},
    NamedKind{"imsi", IdentityKind::subscriber},    NamedKind{"iccid", IdentityKind::simCard},
    NamedKind{"imei", IdentityKind::equipment},     NamedKind{"msisdn", IdentityKind::phone},
    NamedKind{"phone", IdentityKind::phone},        NamedKind{"mdn", IdentityKind::phone},
    NamedKind{"user", IdentityKind::other},         NamedKind{"mail", IdentityKind::other},
    NamedKind{"serial", IdentityKind::other}};

/// What may follow such a part in the name of an identity.
constexpr std::array<std::string_view, 7> kQualifiers = {"name",  "number", "address", "code",
                                                         "guest", "ghz",    "id"};

/// Names with these ends are those of settings.
constexpr std::array<std::string_view, 12> kSettings = {
    "language", "locale",   "mode",    "type",     "enabled", "broadcast",
    "length",   "lifetime", "timeout", "interval", "port",    "policy"};

/// Names with these parts are those of switches, if their values are.
constexpr std::array<std::string_view, 7> kSwitches = {"hide",      "show",  "enable", "disable",
                                                       "broadcast", "allow", "require"};

constexpr std::array<std::string_view, 7> kSwitchValues = {"true", "false",   "yes",     "off",
                                                           "none", "enabled", "disabled"};

/// Names of members that hold ids of messages, notifications and their kinds.
constexpr std::array<std::string_view, 5> kIds = {"id", "category", "labelId", "titleId", "textId"};

constexpr std::array<std::string_view, 4> kOtherStructure = {"language", "address", "networkName",
                                                             "networkId"};

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char character) {
        return static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
    });
    return text;
}

template <typename List>
bool Has(const List& list, std::string_view text) {
    return std::find(list.begin(), list.end(), text) != list.end();
}

template <typename List>
bool EndsWithOneOf(const List& list, std::string_view text) {
    return std::any_of(list.begin(), list.end(), [&](auto end) { return text.ends_with(end); });
}

bool LeadsThrough(const Path& path, std::string_view name) {
    return std::any_of(path.begin(), path.end(), [&](const std::string& step) {
        return step.find(name) != std::string::npos;
    });
}

/// The part of a configuration's name with which it ends, apart from qualifiers.
const NamedKind* PartAtTheEnd(std::string_view name) {
    while (!name.empty()) {
        const auto* const found =
            std::find_if(kConfigurations.begin(), kConfigurations.end(),
                         [&](const NamedKind& one) { return name.ends_with(one.part); });
        if (found != kConfigurations.end()) {
            return found;
        }
        const auto* const qualifier =
            std::find_if(kQualifiers.begin(), kQualifiers.end(),
                         [&](std::string_view one) { return name.ends_with(one); });
        // Also the number of a network or its band, as in ssid_5g.
        const bool isLetter = std::isalpha(static_cast<unsigned char>(name.back())) != 0;
        const bool isBand = name.size() > 1 && name.back() == 'g' && IsDigit(name[name.size() - 2]);
        if (qualifier != kQualifiers.end()) {
            name.remove_suffix(qualifier->size());
        } else if (!isLetter || isBand) {
            name.remove_suffix(1);
        } else {
            return nullptr;
        }
    }
    return nullptr;
}

/// What the value @p text of the configuration @p name, in lower case, identifies.
std::optional<IdentityKind> KindOfConfiguration(const std::string& name, const std::string& text) {
    if (text.empty() || EndsWithOneOf(kSettings, name)) {
        return std::nullopt;
    }
    const bool isSwitch = std::any_of(kSwitches.begin(), kSwitches.end(), [&](auto part) {
        return name.find(part) != std::string::npos;
    });
    const NamedKind* found = PartAtTheEnd(name);
    if (found != nullptr && (found->part == "pin" || found->part == "puk")) {
        // A device has other pins, too, which are on or off.
        constexpr std::size_t kShortest = 4;
        constexpr std::size_t kLongest = 8;
        const bool isPin = text.size() >= kShortest && text.size() <= kLongest &&
                           std::all_of(text.begin(), text.end(), IsDigit);
        return isPin ? std::optional(found->kind) : std::nullopt;
    }
    if (found == nullptr && !IsCommon(text)) {
        const auto* const inside =
            std::find_if(kConfigurations.begin(), kConfigurations.end(), [&](const NamedKind& one) {
                return !one.countsAtTheEndOnly && name.find(one.part) != std::string::npos;
            });
        found = inside == kConfigurations.end() ? nullptr : inside;
    }
    return found == nullptr || (isSwitch && IsCommon(text)) ? std::nullopt
                                                            : std::optional(found->kind);
}

}  // namespace

TextPlace PlaceOf(const Path& path, const std::string& text) {
    if (path.empty()) {
        return {TextUse::other};
    }
    // In a scenario, a step may be a whole path.
    const std::string& last = path.back();
    const std::size_t dot = last.rfind('.');
    const std::string member = dot == std::string::npos ? last : last.substr(dot + 1);
    if (LeadsThrough(path, "Configurations")) {
        const std::string name = Lower(member);
        const bool isBssid = name.find("bssid") != std::string::npos;
        const bool mayHoldMac = isBssid || name.find("mac") != std::string::npos;
        const auto kind = isBssid ? std::nullopt : KindOfConfiguration(name, text);
        return {.use = kind ? TextUse::identity : TextUse::other,
                .kind = kind.value_or(IdentityKind::other),
                .mayHoldMac = mayHoldMac};
    }
    if (member == "version") {
        return {TextUse::version};
    }
    if (LeadsThrough(path, "getSubscriberInfo")) {
        return {TextUse::identity, IdentityKind::subscriber};
    }
    // An id has no blanks; a device may publish a whole sentence in its place.
    const bool isId = Has(kIds, member) && text.find(' ') == std::string::npos;
    const bool isStructure =
        isId || Has(kOtherStructure, member) || LeadsThrough(path, "externalUriData");
    return {isStructure ? TextUse::structure : TextUse::other};
}

bool IsCommon(const std::string& text) {
    constexpr std::size_t kShort = 2;
    return text.size() <= kShort || Has(kSwitchValues, Lower(text));
}
