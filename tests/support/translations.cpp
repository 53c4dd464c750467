#include "tests/support/translations.h"

#include <libintl.h>

#include <map>
#include <utility>

// NOLINTNEXTLINE(bugprone-reserved-identifier,readability-identifier-naming): its name in gettext
extern "C" int _nl_msg_cat_cntr;

namespace {

std::map<std::pair<std::string, std::string>, std::string>& Catalogue() {
    static std::map<std::pair<std::string, std::string>, std::string> catalogue;
    return catalogue;
}

std::map<std::string, int>& LookupsById() {
    static std::map<std::string, int> lookups;
    return lookups;
}

}  // namespace

namespace translations {

void Give(const std::string& domain, const std::string& id, const std::string& text) {
    Catalogue()[{domain, id}] = text;
    ++_nl_msg_cat_cntr;
}

void Reset() {
    Catalogue().clear();
    ++_nl_msg_cat_cntr;
}

int Lookups(const std::string& id) {
    return LookupsById()[id];
}

}  // namespace translations

// Replaces the function of the C library.
char* dgettext(const char* domain, const char* id) noexcept {
    ++LookupsById()[id];
    const auto found = Catalogue().find({domain, id});
    return found == Catalogue().end() ? const_cast<char*>(id) : found->second.data();
}
