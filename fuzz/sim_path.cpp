// Paths into a device document, and changes at such a path as kestal-sim makes them. The input has
// a path on its first line, then a value.
#include <exception>
#include <nlohmann/json.hpp>

#include "bindings/simulator/edit/device_edit.h"
#include "bindings/simulator/edit/device_path.h"
#include "bindings/simulator/edit/json_patch.h"
#include "fuzz/scratch.h"
#include "fuzz/target.h"

namespace {

using Json = nlohmann::ordered_json;
using binding::KeyPath;

/// Runs @p change on @p document. Returns false and leaves the document unchanged when it is
/// refused.
template <typename Change>
bool Attempt(Json& document, Change change) {
    Json changed = document;
    try {
        change(changed);
    } catch (const std::runtime_error& error) {
        Require(*error.what() != '\0', "an error says what is wrong");
        return false;
    }
    document = std::move(changed);
    return true;
}

bool IsGood(const Json& document) {
    Json copy = document;
    return Attempt(copy, [](Json& changed) { binding::MustBeGood(changed); });
}

void RequireFailure(const Json& device, const KeyPath& path) {
    Json document = device;
    if (!Attempt(document, [&](Json& changed) { binding::FailCall(changed, path, 5); })) {
        return;
    }
    Require(IsGood(document), "a call can be made to fail", document.dump());
    Require(Attempt(document, [&](Json& changed) { binding::HealCall(changed, path); }),
            "a failing call can be healed", binding::PathText(path));
    Require(document == device, "a healed call answers as before", document.dump());
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string deviceText = ReadFile(KESTAL_FUZZ_DEVICE);
    static const Json device = binding::ReadGoodDocument("device.json", deviceText);
    const std::string input = InputText(data, size);
    std::string_view rest = input;
    const std::string text(TakeUntil(rest, '\n'));
    KeyPath path;
    Json ignored;
    if (!Attempt(ignored, [&](Json&) { path = binding::ResolvePath(text, device); })) {
        return 0;
    }
    const Json* const found = binding::FindAt(device, path);
    if (found != nullptr) {
        RequireFailure(device, path);
    }
    Json document = device;
    (void)Attempt(document, [&](Json& changed) {
        binding::MoveNumber(changed, path, {.by = Integer(rest), .least = -5, .most = 5});
    });
    const Json value = Json::parse(rest, nullptr, false);
    if (value.is_discarded() ||
        !Attempt(document, [&](Json& changed) { binding::SetValue(changed, path, value); })) {
        return 0;
    }
    const Json* const set = binding::FindAt(document, path);
    Require(set != nullptr && *set == value, "what was set is there", text);
    const std::string patched = binding::Patched(deviceText, device, document);
    // Compared without regard to order: a new member may stand anywhere.
    Require(nlohmann::json::parse(patched) == nlohmann::json(document),
            "the file says what was set", patched);
    (void)IsGood(document);
    return 0;
}
