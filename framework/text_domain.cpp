#include "framework/text_domain.h"

#include <libintl.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>

// gettext counts here the changes of the language and of the catalogues.
// NOLINTNEXTLINE(bugprone-reserved-identifier,readability-identifier-naming): its name in gettext
extern "C" int _nl_msg_cat_cntr;

namespace {

/// The texts of the current language that have been looked up. A list of notifications needs the
/// same ones again and again, and gettext takes several times as long to find one. They are in an
/// array of fixed size, so that they need no memory that may be missing, and never more of it.
class Translations {
  public:
    /// Longer than any id of the catalogue, and than most texts of links, which are ids as well.
    static constexpr std::size_t kLongestId = 101;

    /// The text of an id that is no longer than that. Ends with the next call.
    std::string_view Text(std::string_view id) {
        if (changes != _nl_msg_cat_cntr) {
            Forget();
            changes = _nl_msg_cat_cntr;
        }
        Entry& entry = Find(id);
        // gettext also finds nothing while memory is short. So it is asked again, in two of sixteen
        // uses, for what it does not find.
        if (!entry.found && entry.uses++ % 16 < 2) {
            const char* const text = dgettext(kTextDomain, entry.id.data());
            entry.found = text != entry.id.data();
            entry.text = text;
        }
        return entry.text;
    }

  private:
    struct Entry {
        /// In the catalogue, which stays in memory, or the id.
        std::string_view text;
        std::size_t size = 0;  ///< of the id; 0 if the entry is not used
        bool found = false;
        std::uint8_t uses = 0;
        std::array<char, kLongestId + 1> id{};
    };

    /// The entry of @p id, a new one if it has none.
    Entry& Find(std::string_view id) {
        // Of the second half, because many ids begin alike.
        const std::size_t hash = std::hash<std::string_view>()(id.substr(id.size() / 2));
        const std::size_t first = hash % entries.size();
        std::size_t index = first;
        while (entries[index].size != 0) {
            Entry& entry = entries[index];
            if (std::string_view(entry.id.data(), entry.size) == id) {
                return entry;
            }
            index = (index + 1) % entries.size();
        }
        if (used == kMostTexts) {
            Forget();
            index = first;
        }
        ++used;
        Entry& entry = entries[index];
        entry.id[id.copy(entry.id.data(), id.size())] = '\0';
        entry.size = id.size();
        return entry;
    }

    void Forget() {
        entries.fill({});
        used = 0;
    }

    /// The catalogue has some 100 texts, but a device may publish any number of other ids.
    static constexpr std::size_t kMostTexts = 192;

    /// A hash table with linear probing. Some entries are never used, so that every search ends.
    std::array<Entry, kMostTexts + 64> entries{};
    std::size_t used = 0;
    int changes = 0;
};

constinit Translations gTranslations;

}  // namespace

std::string Translated(std::string_view id) {
    // gettext would translate the empty id to the header of the catalogue.
    if (id.empty()) {
        return "";
    }
    if (id.size() > Translations::kLongestId) {
        return dgettext(kTextDomain, std::string(id).c_str());
    }
    return std::string(gTranslations.Text(id));
}

void AppendTranslated(std::string& text, std::string_view id) {
    if (id.empty() || id.size() > Translations::kLongestId) {
        text += Translated(id);
    } else {
        text += gTranslations.Text(id);
    }
}
