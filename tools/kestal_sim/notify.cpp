// The command that adds notifications to the device's document and removes them.
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>

#include "bindings/simulator/edit/device_edit.h"
#include "bindings/simulator/edit/notification_types.h"
#include "tools/kestal_sim/commands.h"
#include "tools/kestal_sim/document.h"

namespace {

using json = nlohmann::ordered_json;

binding::NotificationFields Fields(const Arguments& arguments) {
    const auto given = [&](const char* option) {
        const std::string& text = arguments.Value(option);
        return text.empty() ? std::nullopt : std::optional(text);
    };
    const auto severity = given("--severity");
    return {.category = given("--category"),
            .severity = severity ? std::make_shared<json>(ValueOf(*severity)) : nullptr,
            .labelId = given("--label"),
            .titleId = given("--title"),
            .textId = given("--text"),
            .active = !arguments.Given("--inactive")};
}

void Notify(const Arguments& arguments, std::ostream& out) {
    if (arguments.Given("--types")) {
        for (const std::string& name : binding::NotificationTypeNames()) {
            out << name << "\n";
        }
    } else if (arguments.Given("--clear")) {
        ChangeDocument([&](json& document) {
            binding::ClearNotifications(document, arguments.Value("--clear"));
        });
    } else if (arguments.Given("TYPE")) {
        const json notification =
            binding::MakeNotification(arguments.Value("TYPE"), Fields(arguments));
        ChangeDocument([&](json& document) { binding::AddNotification(document, notification); });
    } else {
        throw UsageError("TYPE, --clear or --types is required");
    }
}

/// An option that sets a field of the notification to be added.
Option Field(const char* name, const char* description, const char* value) {
    return {.name = name,
            .description = description,
            .value = value,
            .excludes = {"--clear", "--types"}};
}

}  // namespace

Command NotifyCommand() {
    return {.names = {"notify"},
            .description = "Add a notification, or remove some",
            .parameters = {{.name = "TYPE",
                            .description = "Type of the notification; one of this type is replaced",
                            .isOptional = true}},
            .run = Notify,
            .options = {{.name = "--clear",
                         .description = "Remove the notifications of TYPE, or all without it",
                         .value = "TYPE",
                         .isValueOptional = true,
                         .excludes = {"TYPE"}},
                        {.name = "--types",
                         .description = "Print the known types, one a line",
                         .excludes = {"TYPE", "--clear"}},
                        Field("--severity", "info, warning, alert, critical, a number", "TEXT"),
                        Field("--category", "Category", "TEXT"),
                        Field("--label", "Message id of the label", "ID"),
                        Field("--title", "Message id of the title", "ID"),
                        Field("--text", "Message id of the text", "ID"),
                        Field("--inactive", "Add it as an inactive notification", nullptr)}};
}
