// The types of notification that the simulator knows.
#pragma once

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

namespace binding {

/// The names of all known types.
std::vector<std::string> NotificationTypeNames();

/// The fields in which a notification differs from the defaults of its type.
struct NotificationFields {
    std::optional<std::string> category;
    std::shared_ptr<const nlohmann::ordered_json> severity;  ///< a name, or a number
    std::optional<std::string> labelId;
    std::optional<std::string> titleId;
    std::optional<std::string> textId;
    bool active = true;
};

/// A notification of the type @p type. Throws std::runtime_error for an unknown type unless
/// @p fields holds every field.
nlohmann::ordered_json MakeNotification(const std::string& type, const NotificationFields& fields);

}  // namespace binding
