// Documents of the simulated device. The input is the document.
#include <nlohmann/json.hpp>
#include <optional>

#include "bindings/device/device_clock.h"
#include "bindings/device/snapshot.h"
#include "bindings/document/device_reader.h"
#include "bindings/posix/json/json_text.h"
#include "bindings/simulator/edit/device_path.h"
#include "bindings/simulator/edit/json_patch.h"
#include "components/status/status_component.h"
#include "components/systemservice/service_api.h"
#include "components/systemservice/system_service_component.h"
#include "fuzz/answers.h"
#include "fuzz/scratch.h"
#include "fuzz/target.h"
#include "platform/sysint.h"

namespace {

using Json = nlohmann::ordered_json;

/// A clock with which no call waits, although a document may ask for that.
class HurriedClock : public binding::DeviceClock {
  public:
    HurriedClock() { binding::SetDeviceClock(this); }

    Steady Now() override { return {}; }
    Wall TimeOfDay() override { return {}; }
    bool WaitUntil(Steady /*time*/) override { return false; }
};

/// Whether the reader accepts @p text. If it does not, requires its message to say where the fault
/// is.
bool IsDevice(const std::string& text) {
    try {
        (void)binding::ReadDevice("device.json", text);
        return true;
    } catch (const std::runtime_error& error) {
        std::string_view what = error.what();
        Require(what.starts_with("device.json:"), "an error names the file", what);
        what.remove_prefix(std::string_view("device.json:").size());
        const std::string_view line = TakeUntil(what, ':');
        Require(Integer(line) > 0, "an error names the line", error.what());
        Require(!what.empty(), "an error says what is wrong", error.what());
        return false;
    }
}

/// Requires that the reader finds each value at its place in the text.
void RequirePlaces(const std::string& text, const Json& value, binding::KeyPath& path,
                   int& budget) {
    if (--budget < 0) {
        return;
    }
    const auto place = binding::FindValue(text, path);
    Require(place.has_value(), "each value has a place", text);
    // Inside a list, only the line of a value is known.
    const bool hasBytes =
        path.empty() ? value.is_structured() : std::holds_alternative<std::string>(path.back());
    if (hasBytes) {
        const std::string found = text.substr(place->begin, place->end - place->begin);
        Require(Json::parse(found, nullptr, false) == value, "the value stands at its place", text);
    }
    std::size_t index = 0;
    if (value.is_structured()) {
        for (const auto& item : value.items()) {
            if (value.is_object()) {
                path.emplace_back(item.key());
            } else {
                path.emplace_back(index++);
            }
            RequirePlaces(text, item.value(), path, budget);
            path.pop_back();
        }
    }
}

/// Requires that changing one value changes nothing else.
void RequireChange(const std::string& text, const Json& document) {
    Json expected = document;
    expected["sys"]["getCellularDataConnectionStatus"] = 4;
    const std::string changed =
        binding::WithMember(text, {"sys"}, "getCellularDataConnectionStatus", "4");
    const Json reread = binding::ParseStrictly(changed);
    // Compared without regard to order: a new member may stand anywhere.
    Require(nlohmann::json(reread) == nlohmann::json(expected), "one value is changed", changed);
    const std::string patched = binding::Patched(text, document, expected);
    Require(nlohmann::json(binding::ParseStrictly(patched)) == nlohmann::json(expected),
            "a patch makes what was wanted", patched);
}

std::optional<Json> Parsed(const std::string& text) {
    try {
        return binding::ParseStrictly(text);
    } catch (const binding::SyntaxError& error) {
        Require(Integer(error.Place()) > 0, "an error names the line", error.Place());
        return std::nullopt;
    }
}

void RequireAnswers() {
    (void)sys_sdkInitialize();
    CTPP::CDT answer;
    StatusComponent status;
    status.Init("");
    (void)status.GetData(answer);
    SystemServiceComponent service;
    (void)service.Dispatch(answer, SERVICE_API_NOTIFICATION);
    (void)sys_sdkShutdown();
    std::string json;
    CTPP::CDT2JSON(answer, json);
    RequireJson(json);
    Require(IsUtf8(json), "a document that is UTF-8 gives answers that are", json);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool confined = (ConfineSimulator(), true);
    static HurriedClock clock;
    Require(confined, "the simulator is confined");
    const std::string text = InputText(data, size);
    const bool isDevice = IsDevice(text);
    const std::optional<Json> document = Parsed(text);
    Require(document.has_value() || !isDevice, "a device is JSON", text);
    Require(!document || text.find('\0') == std::string::npos, "JSON has no NUL", text);
    if (document) {
        binding::KeyPath path;
        int budget = 50;
        RequirePlaces(text, *document, path, budget);
    }
    if (isDevice) {
        RequireChange(text, *document);
    }
    (void)PlaceDevice(text);
    Require((binding::CurrentDevice() != nullptr) == isDevice, "calls see what the reader takes");
    RequireAnswers();
    return 0;
}
