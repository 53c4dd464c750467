// Scenarios. The input is the file of a scenario.
#include "bindings/simulator/play/scenario.h"

#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>

#include "bindings/simulator/edit/device_edit.h"
#include "fuzz/scratch.h"
#include "fuzz/target.h"

namespace {

std::optional<binding::Scenario> Read(const std::string& text) {
    try {
        return binding::ReadScenario("scenario.json", text);
    } catch (const std::runtime_error& error) {
        std::string_view what = error.what();
        Require(TakeUntil(what, ':') == "scenario.json", "an error names the file", error.what());
        Require(Integer(TakeUntil(what, ':')) > 0, "an error names the line", error.what());
        return std::nullopt;
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto device =
        binding::ReadGoodDocument("device.json", ReadFile(KESTAL_FUZZ_DEVICE));
    const auto scenario = Read(InputText(data, size));
    if (!scenario) {
        return 0;
    }
    Require(scenario->duration.count() >= 0, "time goes on");
    std::size_t changes = 0;
    for (const auto& [time, instant] : scenario->instants) {
        Require(time.count() >= 0 && time <= scenario->duration, "all happens in its time");
        for (const binding::Change& change : instant.changes) {
            changes += 1 + (change.condition ? change.condition->size() : 0);
        }
    }
    // The check tries each change and each condition on a copy of the device, which takes long when
    // there are many.
    if (changes > 20) {
        return 0;
    }
    try {
        binding::MustBePlayable(*scenario, device);
        auto played = device;
        for (const auto& [time, instant] : scenario->instants) {
            instant.Apply(played);
        }
    } catch (const std::runtime_error& error) {
        Require(*error.what() != '\0', "an error says what is wrong");
    }
    return 0;
}
