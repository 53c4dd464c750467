// kestal-conformance: checks whether the binding that it is linked with keeps the promises of
// platform/.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <exception>
#include <iostream>

#include "conformance/crash.h"
#include "conformance/sections/sections.h"
#include "version/version.h"

namespace conformance {

std::span<const Section> Sections() {
    static constexpr std::array kSections = {
        Section{"log", ExamineLog},
        Section{"sysint", ExamineSysint},
        Section{"webui", ExamineWebui},
        Section{"msgbus", ExamineMsgbus},
        Section{"session", ExamineSession},
        Section{"cgi", ExamineCgi},
        Section{"maintenance", ExamineMaintenance},
        Section{"language", ExamineLanguage},
        Section{"watchdog", ExamineWatchdog},
        Section{"threads", ExamineThreads},
        Section{"signals", ExamineSignals},
        Section{"actions", ExamineActions},
    };
    return kSections;
}

namespace {

/// Names to ask for: one that no device has, the empty name, a very long one, and some for which
/// the service and the pages ask.
const std::vector<std::string> kNames = {"conformance-unknown", "", std::string(300, 'n'), "sms",
                                         "en_US"};

std::vector<std::string> SectionNames() {
    std::vector<std::string> names;
    for (const Section& section : Sections()) {
        names.emplace_back(section.name);
    }
    return names;
}

void Describe(CLI::App& app, Options& options, int& seconds) {
    const CLI::IsMember isSection(SectionNames());
    app.get_formatter()->column_width(36);
    app.add_option("--only", options.only, "Examine this part alone; may be given again")
        ->type_name("PART")
        ->check(isSection);
    app.add_option("--skip", options.skip, "Leave this part out; may be given again")
        ->type_name("PART")
        ->check(isSection);
    app.add_flag("--actions", options.actions, "Stop the data call, too, and start it again");
    app.add_option("--session", options.session, "Identifier of a session that is logged on")
        ->type_name("ID");
    app.add_option("--address", options.address, "Address of that session's caller (127.0.0.1)")
        ->type_name("ADDRESS");
    app.add_option("--agent", options.agent, "User agent of that session's caller (none)")
        ->type_name("TEXT");
    app.add_option("--name", options.names,
                   "Field, application, page or language to ask for, too; may be given again")
        ->type_name("NAME");
    app.add_option("--deadline", seconds, "Seconds after which a call hangs (10)")
        ->type_name("SECONDS")
        ->check(CLI::Range(1, 3600));
    app.set_version_flag("--version", std::string("kestal-conformance ") + KestalVersion(),
                         "Print the version and exit");
    std::string parts;
    for (const std::string& name : SectionNames()) {
        parts += " " + name;
    }
    app.footer("Parts:" + parts + "\nExits with 1 when a line begins with FAIL.");
}

bool Has(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

int Run(const Options& options) {
    Report report;
    Probe probe(report, options.limit);
    for (const Section& section : Sections()) {
        const bool chosen = options.only.empty() || Has(options.only, section.name);
        if (chosen && !Has(options.skip, section.name)) {
            report.Note(std::string("-- ") + section.name);
            section.run(probe, options);
        }
    }
    if (options.only.empty() && options.skip.empty()) {
        probe.CheckThatAllWereMade();
    }
    return report.Summarize();
}

}  // namespace

}  // namespace conformance

int main(int argc, char** argv) {
    try {
        conformance::Options options;
        CLI::App app("Tests whether the binding of this device does what platform/ declares.",
                     "kestal-conformance");
        int seconds = static_cast<int>(options.limit.count());
        conformance::Describe(app, options, seconds);
        try {
            app.parse(argc, argv);
        } catch (const CLI::CallForHelp&) {
            std::cout << app.help();
            return std::cout.flush() ? 0 : 1;
        } catch (const CLI::CallForVersion& version) {
            std::cout << version.what() << "\n";
            return std::cout.flush() ? 0 : 1;
        } catch (const CLI::ParseError& error) {
            std::cerr << "kestal-conformance: " << error.what()
                      << "\nTry 'kestal-conformance --help'.\n";
            return 2;
        }
        options.limit = std::chrono::seconds(seconds);
        options.names.insert(options.names.begin(), conformance::kNames.begin(),
                             conformance::kNames.end());
        const conformance::CrashReports reports;
        return conformance::Run(options);
    } catch (const std::exception& error) {
        std::cerr << "kestal-conformance: " << error.what() << "\n";
        return 1;
    }
}
