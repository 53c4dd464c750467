#include "framework/text_domain.h"

#include <libintl.h>

#include <cstddef>
#include <functional>
#include <unordered_map>

// gettext counts here the changes of the language and of the catalogues.
// NOLINTNEXTLINE(bugprone-reserved-identifier,readability-identifier-naming): its name in gettext
extern "C" int _nl_msg_cat_cntr;

namespace {

/// The texts of the language of the request that have been looked up. A list of notifications needs
/// the same ones again and again, and gettext takes several times as long to find one.
class Translations {
  public:
    /// Ends with the next call.
    std::string_view Text(std::string_view id) {
        if (changes != _nl_msg_cat_cntr) {
            texts.clear();
            changes = _nl_msg_cat_cntr;
        }
        auto known = texts.find(id);
        if (known == texts.end()) {
            if (texts.size() == kMostTexts) {
                texts.clear();
            }
            known = texts.emplace(id, Entry{}).first;
        }
        Entry& entry = known->second;
        if (!entry.certain) {
            LookUp(known->first.c_str(), entry);
        }
        return entry.text;
    }

  private:
    struct Entry {
        std::string text;
        bool missing = false;
        bool certain = false;
    };

    struct Hash : std::hash<std::string_view> {
        using is_transparent = void;
    };

    /// The catalogue has some 100 texts, but the device may publish any number of other ids.
    static constexpr std::size_t kMostTexts = 256;

    /// gettext also returns the id if it lacked the memory to look for the text. So a text counts
    /// as missing only if it was missing the time before, too.
    static void LookUp(const char* id, Entry& entry) {
        const char* const text = dgettext(kTextDomain, id);
        entry.text = text;
        entry.certain = text != id || entry.missing;
        entry.missing = text == id;
    }

    std::unordered_map<std::string, Entry, Hash, std::equal_to<>> texts;
    int changes = 0;
};

std::string_view Text(std::string_view id) {
    static Translations translations;
    // gettext would translate the empty id to the header of the catalogue.
    return id.empty() ? id : translations.Text(id);
}

}  // namespace

std::string Translated(std::string_view id) {
    return std::string(Text(id));
}

void AppendTranslated(std::string& text, std::string_view id) {
    text += Text(id);
}
