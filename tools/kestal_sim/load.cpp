// The commands that list the shipped devices and scenarios, and those that replace the device by
// another one.
#include <sys/types.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <nlohmann/json.hpp>
#include <ostream>
#include <vector>

#include "bindings/names/enumerations.h"
#include "bindings/posix/files/file_update.h"
#include "bindings/posix/json/json_text.h"
#include "bindings/simulator/device_file.h"
#include "bindings/simulator/edit/device_edit.h"
#include "bindings/simulator/edit/installed_file.h"
#include "bindings/simulator/edit/unseen_changes.h"
#include "tools/kestal_sim/commands.h"
#include "tools/kestal_sim/document.h"
#include "tools/kestal_sim/restart.h"

namespace {

using json = nlohmann::ordered_json;

/// Writes the names of the shipped files in @p folder with their titles.
void List(const std::string& folder, std::ostream& out) {
    const std::filesystem::path shipped = ShippedFolder(folder);
    const std::vector<std::string> names = binding::NamesIn(shipped);
    std::size_t width = 0;
    for (const std::string& name : names) {
        width = std::max(width, name.size());
    }
    for (const std::string& name : names) {
        const json document = binding::ParseStrictly(Contents(shipped / (name + ".json")));
        const std::string blanks(width - name.size() + 2, ' ');
        out << name << blanks << document.value("title", "") << "\n";
    }
}

/// Replaces the device by the one in @p file. Says what a running service does not see, unless it
/// is to be started anew.
void Replace(const std::string& file, bool restarts) {
    const std::string text = Contents(file);
    const json after = binding::ReadGoodDocument(file, text);
    const std::string device = binding::DevicePath();
    const std::vector<pid_t> services = restarts ? ServicesOn(device) : std::vector<pid_t>();
    std::vector<std::string> unseen;
    const auto replaced = [&](const std::string& old) -> const std::string& {
        try {
            unseen = binding::UnseenChanges(binding::ReadGoodDocument(device, old), after);
        } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): it may be damaged
        }
        return text;
    };
    binding::UpdateFile(device, binding::MissingFile::createdForAll, replaced);
    if (restarts) {
        RestartServices(device, services);
    } else if (!unseen.empty()) {
        (void)std::fprintf(stderr,
                           "kestal-sim: a running service has read these values already and does "
                           "not see their changes: %s; with --restart, it is started anew\n",
                           binding::Listed(unseen).c_str());
    }
}

void Load(const Arguments& arguments, std::ostream& /*out*/) {
    Replace(FileNamed(arguments.Value("FILE"), "devices"), arguments.Given("--restart"));
}

void Reset(const Arguments& arguments, std::ostream& /*out*/) {
    Replace(ShippedFolder("devices") / "default.json", arguments.Given("--restart"));
}

}  // namespace

std::vector<Command> LoadCommands() {
    const Option restart = {"--restart", "Then start the service anew that runs on the device"};
    return {
        {.names = {"devices"},
         .description = "List the shipped devices",
         .run = [](const Arguments& /*arguments*/, std::ostream& out) { List("devices", out); }},
        {.names = {"scenarios"},
         .description = "List the shipped scenarios",
         .run = [](const Arguments& /*arguments*/, std::ostream& out) { List("scenarios", out); }},
        {.names = {"load"},
         .description = "Replace the device by another one",
         .parameters = {{"FILE", "The document, or the name of a shipped one: roaming"}},
         .run = Load,
         .options = {restart}},
        {.names = {"reset"},
         .description = "Replace the device by the shipped default one",
         .run = Reset,
         .options = {restart}},
    };
}
