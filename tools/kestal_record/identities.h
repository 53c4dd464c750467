// Replaces whatever identifies a person, a device or a network by something that looks the same.
// Replacements are numbered in the order in which the identities were learned, so that they tell
// nothing about what they replace.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tools/json_output.h"
#include "tools/kestal_record/identity_form.h"
#include "tools/kestal_record/text_place.h"

class Identities {
  public:
    /// @p text is an identity. Its form decides on the kind if it tells one, otherwise @p kind.
    void Learn(const std::string& text, IdentityKind kind);

    /// Learns the identities that can be told by their form in @p text.
    void LearnFrom(const std::string& text);

    /// The same for a line of the service's log, which also names sessions.
    void LearnFromLog(const std::string& line);

    /// Learns those of a recorded device or scenario (see RawText).
    void LearnFromRecording(const Json& recorded);

    /// Learns those of a report on the sources of a Linux board.
    void LearnFromSources(const Json& sources);

    /// @p text with all identities that have been learned replaced. Names of hosts and MAC
    /// addresses are the same in upper and lower case. After the first call, nothing is learned any
    /// more.
    std::string Replaced(const std::string& text, TextLayout layout = TextLayout::text);

    /// The same for @p text at @p path of a recording, where some texts keep what is an identity
    /// elsewhere (see PlaceOf).
    std::string ReplacedAt(const std::vector<std::string>& path, const std::string& text,
                           TextLayout layout = TextLayout::text);

    /// @p value with its texts replaced, but not the names in it.
    Json ReplacedIn(const Json& value);

  private:
    using Identity = std::pair<IdentityKind, std::string>;

    struct Substitute {
        std::string text;
        bool ignoresCase = false;
    };

    void Settle();
    std::string ReplacedByForm(const std::string& text, TextLayout layout);
    std::uint64_t NumberOf(const std::string& text, IdentityKind kind);

    /// As they were written, in the order in which they were learned.
    std::vector<std::pair<std::string, IdentityKind>> learned;
    /// What each is replaced by, as it is written.
    std::map<std::string, Substitute> replacements;
    std::set<Identity> originals;
    std::set<std::string> used;
    std::map<Identity, std::uint64_t> numbers;
    std::map<IdentityKind, std::uint64_t> counts;
    bool isSettled = false;
};
