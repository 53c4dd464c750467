// The directory in which translations are searched.
#include "platform/language_support.h"

#include <libintl.h>

#include "tests/support/scratch.h"

namespace {

class LanguageSupportTest : public SimulatedDevice {};

TEST_F(LanguageSupportTest, BindsTheDomainAndMakesItCurrent) {
    environment.Unset("KESTAL_LOCALEDIR");
    LanguageSupport::SetTextDomainProperties("webui", "UTF-8", "/usr/share/locale");
    EXPECT_STREQ(textdomain(nullptr), "webui");
    EXPECT_STREQ(bindtextdomain("webui", nullptr), "/usr/share/locale");
    EXPECT_STREQ(bind_textdomain_codeset("webui", nullptr), "UTF-8");
}

TEST_F(LanguageSupportTest, DirectoryMayBeElsewhere) {
    environment.Set("KESTAL_LOCALEDIR", "/elsewhere");
    LanguageSupport::SetTextDomainProperties("webui", "UTF-8", "/usr/share/locale");
    EXPECT_STREQ(bindtextdomain("webui", nullptr), "/elsewhere");
}

}  // namespace
