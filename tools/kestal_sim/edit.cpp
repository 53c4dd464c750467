// The commands that show the device's document and change it.
#include <cstdio>
#include <nlohmann/json.hpp>
#include <ostream>
#include <stdexcept>

#include "bindings/json/formatted.h"
#include "bindings/simulator/edit/device_edit.h"
#include "bindings/simulator/edit/device_path.h"
#include "bindings/simulator/edit/printed_answer.h"
#include "tools/kestal_sim/commands.h"
#include "tools/kestal_sim/document.h"
#include "tools/kestal_sim/fault.h"

namespace {

using json = nlohmann::ordered_json;
using binding::KeyPath;
using binding::ResolvePath;

void Show(const Arguments& arguments, std::ostream& out) {
    const json document = CurrentDocument();
    if (arguments.Given("--paths")) {
        for (const std::string& path : binding::AllPaths(document)) {
            out << path << "\n";
        }
        return;
    }
    const KeyPath path =
        arguments.Given("PATH") ? ResolvePath(arguments.Value("PATH"), document) : KeyPath();
    const json* const value = binding::FindAt(document, path);
    if (value == nullptr) {
        binding::MustBeKnown(document, path);
        throw std::runtime_error(binding::PathText(path) + ": not in the document");
    }
    out << binding::Formatted(*value) << "\n";
}

void Set(const Arguments& arguments, std::ostream& /*out*/) {
    const json value = ValueOf(arguments.Value("VALUE"));
    KeyPath failing;
    ChangeDocument([&](json& document) {
        const KeyPath path = ResolvePath(arguments.Value("PATH"), document);
        binding::SetValue(document, path, binding::FromPrinted(path, value));
        failing = binding::FailingCallOn(document, path);
    });
    if (!failing.empty()) {
        (void)std::fprintf(stderr, "kestal-sim: %s fails; the new value shows once it is healed\n",
                           binding::PathText(failing).c_str());
    }
}

void Fail(const Arguments& arguments, std::ostream& /*out*/) {
    const json fault = FaultOf(arguments);
    ChangeDocument([&](json& document) {
        binding::FailCall(document, ResolvePath(arguments.Value("CALL"), document), fault);
    });
}

void Heal(const Arguments& arguments, std::ostream& /*out*/) {
    ChangeDocument([&](json& document) {
        binding::HealCall(document, ResolvePath(arguments.Value("CALL"), document));
    });
}

}  // namespace

std::vector<Command> DocumentCommands() {
    return {
        {.names = {"show"},
         .description = "Print the device's document, or a part of it",
         .parameters = {{.name = "PATH",
                         .description = "Path of what to print; by default the whole document",
                         .isOptional = true}},
         .run = Show,
         .options = {{.name = "--paths",
                      .description = "Print the paths of all values instead, one a line",
                      .excludes = {"PATH"}}}},
        {.names = {"set"},
         .description = "Set the answer of a call, or a part of it",
         .parameters = {{"PATH", "Path of the value, such as sys.getBatteryStatus.chargePercent"},
                        {"VALUE", "JSON, or the name of a value: ready; anything else is a text"}},
         .run = Set},
        {.names = {"fail"},
         .description = "Make a call fail, always or now and then, be slow or hang",
         .parameters = {{"CALL", "The call, such as sys.getGPSStatus; also a page or a channel"},
                        {.name = "CODE",
                         .description = "The code that it fails with: a number, or its name; not "
                                        "needed if it is slow or hangs",
                         .isOptional = true}},
         .run = Fail,
         .options = FaultOptions()},
        {.names = {"heal"},
         .description = "Let a call answer as it did before it was made to fail",
         .parameters = {{"CALL", "The call, as it was given to fail"}},
         .run = Heal},
    };
}
