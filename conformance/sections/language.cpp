// platform/language_support.h.
#include <libintl.h>

#include "conformance/sections/sections.h"
#include "platform/language_support.h"

namespace conformance {

namespace {

void Expect(Report& report, const char* what, const char* bound, const std::string& expected) {
    const std::string text = bound == nullptr ? "" : bound;
    if (text != expected) {
        report.Fail("LanguageSupport::SetTextDomainProperties",
                    std::string(what) + " is " + Quoted(text) + " in place of " + Quoted(expected));
    }
}

}  // namespace

void ExamineLanguage(Probe& probe, const Options& /*options*/) {
    const std::string domain = "conformance";
    // A code set that differs from the one that a locale uses by default.
    const std::string codeSet = "ISO-8859-1";
    const std::string directory = "/usr/share/locale";
    probe.Tell(
        "LanguageSupport::SetTextDomainProperties", domain + ", " + codeSet + ", " + directory,
        [&] { LanguageSupport::SetTextDomainProperties(domain, codeSet, directory); },
        [] { return std::string(); });
    Report& report = probe.Told();
    Expect(report, "the current domain", textdomain(nullptr), domain);
    Expect(report, "the code set of the domain", bind_textdomain_codeset(domain.c_str(), nullptr),
           codeSet);
    Expect(report, "the directory of the domain", bindtextdomain(domain.c_str(), nullptr),
           directory);
}

}  // namespace conformance
