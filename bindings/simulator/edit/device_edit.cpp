#include "bindings/simulator/edit/device_edit.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>
#include <vector>

#include "bindings/device/device_clock.h"
#include "bindings/document/answer_reader.h"
#include "bindings/document/device_reader.h"
#include "bindings/document/document_time.h"
#include "bindings/document/node.h"
#include "bindings/document/read_document.h"
#include "bindings/document/value_names.h"
#include "bindings/names/nearest_name.h"
#include "bindings/posix/files/file_update.h"
#include "bindings/posix/json/json_text.h"
#include "bindings/simulator/edit/device_path.h"
#include "bindings/simulator/edit/json_patch.h"
#include "bindings/simulator/edit/notification_types.h"
#include "platform/notification.h"

namespace binding {

namespace {

using json = nlohmann::ordered_json;

bool HasBeenMadeToFail(const json& value) {
    return value.is_object() && value.contains("error") && value.contains(kHealedName);
}

/// Whether the entry @p value of a call says more than that every call fails.
bool IsFault(const json& value) {
    return HasBeenMadeToFail(value) && value.size() > 2;
}

/// The answer in the entry @p value of a call: the value itself or, if the call has been made to
/// fail, the kept answer, which healing the call restores.
json& HealthyValue(json& value) {
    return HasBeenMadeToFail(value) ? value.at(kHealedName) : value;
}

/// The value at @p step of @p value, created as null where there is none.
json& Step(json& value, const KeyPath::value_type& step, const std::string& whole) {
    if (const auto* const name = std::get_if<std::string>(&step)) {
        if (!value.is_object() && !value.is_null()) {
            throw std::runtime_error("there is no " + whole + ": '" + *name +
                                     "' would be a member of something that is not an object");
        }
        return value[*name];
    }
    const std::size_t position = std::get<std::size_t>(step);
    const std::size_t size = value.is_array() ? value.size() : 0;
    if (!(value.is_array() || value.is_null()) || position > size) {
        throw std::runtime_error(
            "there is no " + whole + ": " +
            (value.is_array() ? "the list has " + std::to_string(size)
                              : std::string("it would be in something that is not a list")));
    }
    if (position == size) {
        value.push_back(nullptr);
    }
    return value[position];
}

/// The entry at @p path exactly as it is in the document, even if it is a failure. Values that are
/// missing on the way are created as null.
json& FindOrCreate(json& document, const KeyPath& path) {
    json* value = &document;
    for (const auto& step : path) {
        value = &Step(HealthyValue(*value), step, PathText(path));
    }
    return *value;
}

std::string TextOf(const std::string& text, const json& before, const json& after) {
    try {
        return Patched(text, before, after);
    } catch (const json::type_error& /*error*/) {
        throw std::runtime_error("a document can hold texts in UTF-8 only");
    }
}

/// @p fault begins with "error".
void MakeFail(json& document, const KeyPath& path, json fault) {
    json& value = FindOrCreate(document, path);
    fault[kHealedName] = HealthyValue(value);
    value = std::move(fault);
}

/// Throws UnknownName, and std::runtime_error when nothing that can fail is at @p path.
void MustBeCall(const json& document, const KeyPath& path) {
    json probe = document;
    MakeFail(probe, path, {{"error", 1}});
    try {
        (void)CompileDevice(probe);
        return;
    } catch (const UnknownName& error) {
        // A longer path means that the failure itself was refused, because no failure may stand
        // here.
        if (error.Path().size() <= path.size()) {
            throw;
        }
    } catch (const ValueError&) {  // NOLINT(bugprone-empty-catch): the error is about the probe
    }
    throw std::runtime_error(PathText(path) + ": this is not a call, a page or a channel");
}

KeyPath StatusPath() {
    return {"sys", "getCellularDataConnectionStatus"};
}

KeyPath NotificationsPath() {
    return {"msgbus", ANS_NOTIFICATION_CHANNEL};
}

}  // namespace

json ReadGoodDocument(const std::string& file, const std::string& text) {
    return ReadDocument(file, text, [](json document) {
        MustBeGood(document);
        return document;
    });
}

void MustBeGood(const json& document) {
    try {
        (void)CompileDevice(document);
    } catch (const UnknownName& error) {
        throw ValueError(error.Path(), WithSuggestion(error));
    }
}

void ChangeDevice(const std::string& path, const std::function<void(json&)>& change) {
    UpdateFile(path, MissingFile::fails, [&](const std::string& text) {
        const json before = ReadGoodDocument(path, text);
        json after = before;
        MakeDueChange(after);
        change(after);
        std::string patched = TextOf(text, before, after);
        MustBeGood(ParseStrictly(patched));
        return patched;
    });
}

void SetValue(json& document, const KeyPath& path, json value) {
    HealthyValue(FindOrCreate(document, path)) = std::move(value);
}

KeyPath FailingCallOn(const json& document, const KeyPath& path) {
    for (auto end = path.begin(); end != path.end();) {
        const KeyPath call(path.begin(), ++end);
        const json* const value = FindAt(document, call);
        if (value == nullptr || HasBeenMadeToFail(*value)) {
            return value == nullptr || IsFault(*value) ? KeyPath() : call;
        }
    }
    return {};
}

void MoveNumber(json& document, const KeyPath& path, const Move& move) {
    json& value = HealthyValue(FindOrCreate(document, path));
    const auto moved = [&](auto number) {
        if ((move.least && std::cmp_less(number, *move.least)) ||
            (move.most && std::cmp_greater(number, *move.most))) {
            return number;
        }
        decltype(number) result = 0;
        if (__builtin_add_overflow(number, move.by, &result)) {
            throw std::runtime_error(PathText(path) + ": " + std::to_string(number) +
                                     " cannot move by " + std::to_string(move.by));
        }
        if (move.least && std::cmp_less(result, *move.least)) {
            result = static_cast<decltype(number)>(*move.least);
        }
        if (move.most && std::cmp_greater(result, *move.most)) {
            result = static_cast<decltype(number)>(*move.most);
        }
        return result;
    };
    // A signed number wherever it fits, since the result may be negative.
    if (const auto number = NumberAt(path, value)) {
        value = moved(*number);
    } else if (const auto large = NumberOf<std::uint64_t>(value)) {
        value = moved(*large);
    } else {
        throw std::runtime_error(PathText(path) + ": expected an integer to move, found " +
                                 (value.is_null() ? "nothing" : value.dump()));
    }
}

void FailCall(json& document, const KeyPath& path, const json& fault) {
    MustBeCall(document, path);
    json made = {{"error", fault.is_object() ? json(nullptr) : fault}};
    if (fault.is_object()) {
        made.update(fault);
    }
    if (made.contains("times") || made.contains("probability")) {
        // Without the time, a service that does not see that the call is healed meanwhile would
        // count on.
        made["since"] = TimeText(CurrentDeviceClock().TimeOfDay());
    }
    MakeFail(document, path, std::move(made));
}

void MakeDueChange(json& document) {
    const json* const status = FindAt(document, StatusPath());
    if (status == nullptr || !status->is_object()) {
        return;
    }
    const auto change = CompileDevice(document).statusChange;
    if (change && change->at <= CurrentDeviceClock().TimeOfDay()) {
        json* changing = &FindOrCreate(document, StatusPath());
        while (HasBeenMadeToFail(*changing)) {
            changing = &changing->at(kHealedName);
        }
        // Taken from the document and not from the device, because it may be a name.
        json next = changing->at("next");
        *changing = std::move(next);
    }
}

const json* ValueAt(const json& document, const KeyPath& path) {
    const json* value = &document;
    for (const auto& step : path) {
        value = FindAt(*value, {step});
        if (value == nullptr) {
            return nullptr;
        }
        if (IsFault(*value)) {
            value = &value->at(kHealedName);
        }
    }
    return path == StatusPath() && value->is_object() && value->contains("now") ? &value->at("now")
                                                                                : value;
}

void HealCall(json& document, const KeyPath& path) {
    MustBeCall(document, path);
    const json* const found = FindAt(document, path);
    if (found == nullptr || !found->is_object() || !found->contains("error")) {
        return;
    }
    if (!HasBeenMadeToFail(*found)) {
        throw std::runtime_error(PathText(path) +
                                 ": the document does not hold what it answered before it failed; "
                                 "set its value");
    }
    json healed = found->at(kHealedName);
    if (!healed.is_null()) {
        FindOrCreate(document, path) = std::move(healed);
        return;
    }
    // The document had no entry for the call before it was made to fail.
    json& parent = FindOrCreate(document, {path.begin(), path.end() - 1});
    parent.erase(std::get<std::string>(path.back()));
}

json& Notifications(json& document) {
    json& list = HealthyValue(FindOrCreate(document, NotificationsPath()));
    if (list.is_null()) {
        list = json::array();
    }
    if (!list.is_array()) {
        throw std::runtime_error(PathText(NotificationsPath()) +
                                 ": expected a list of notifications, found " + list.dump());
    }
    return list;
}

void AddNotification(json& document, const json& notification) {
    json& list = Notifications(document);
    const auto id = notification.at("id").get<std::string>();
    const auto same = std::find_if(list.begin(), list.end(), [&](const json& one) {
        return one.is_object() && one.value("id", "") == id;
    });
    if (same == list.end()) {
        list.push_back(notification);
    } else {
        *same = notification;
    }
}

void ClearNotifications(json& document, const std::string& id) {
    json& list = Notifications(document);
    if (id.empty()) {
        list.clear();
        return;
    }
    std::vector<std::string> known = NotificationTypeNames();
    for (const json& one : list) {
        known.push_back(one.value("id", ""));
    }
    if (std::find(known.begin(), known.end(), id) == known.end()) {
        throw std::runtime_error("there is no notification '" + id + "'" +
                                 Suggestion(NearestName(id, known)));
    }
    list.erase(std::remove_if(list.begin(), list.end(),
                              [&](const json& one) { return one.value("id", "") == id; }),
               list.end());
}

}  // namespace binding
