// Changes of a device document.
//
// When a call is made to fail or faulty, its entry keeps the original answer, and healing the call
// restores it. Until then, changes of the call's value change the kept answer.
#pragma once

#include <cstdint>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "bindings/document/document_error.h"

namespace binding {

/// Changes the document at @p path in one step, if the simulator's reader accepts what @p change
/// makes of it. Throws std::runtime_error and what @p change throws; the
/// document is unchanged then.
void ChangeDevice(const std::string& path,
                  const std::function<void(nlohmann::ordered_json&)>& change);

/// The document @p text of the file @p file. Throws std::runtime_error, with a suggestion for an
/// unknown name, unless the simulator's reader accepts it.
nlohmann::ordered_json ReadGoodDocument(const std::string& file, const std::string& text);

/// Throws ValueError, with a suggestion for an unknown name, unless the simulator's reader
/// accepts @p document.
void MustBeGood(const nlohmann::ordered_json& document);

/// Sets the value at @p path to @p value. Objects that are missing on the way are created; the
/// position after the last one of a list appends to it. Throws std::runtime_error for a later
/// position, and for a name in something that is not an object.
void SetValue(nlohmann::ordered_json& document, const KeyPath& path, nlohmann::ordered_json value);

/// If the device's own change of the data call is due, makes it.
void MakeDueChange(nlohmann::ordered_json& document);

/// The value that the device has at @p path; null when it has none, for instance because the call
/// fails. A call that fails only now and then, is slow or hangs still has its value.
const nlohmann::ordered_json* ValueAt(const nlohmann::ordered_json& document, const KeyPath& path);

/// The path of the call to which the value at @p path belongs if every such call fails; empty
/// otherwise.
KeyPath FailingCallOn(const nlohmann::ordered_json& document, const KeyPath& path);

/// By how much a number changes, and between which limits.
struct Move {
    std::int64_t by = 0;
    std::optional<std::int64_t> least = std::nullopt;
    std::optional<std::int64_t> most = std::nullopt;
};

/// Changes the integer at @p path, at most to its limit. An integer that is already outside of the
/// limits is left alone, because somebody has set it on purpose. Throws std::runtime_error when
/// there is no integer, or when the result does not fit into 64 bits.
void MoveNumber(nlohmann::ordered_json& document, const KeyPath& path, const Move& move);

/// Makes the call at @p path fail or faulty. @p fault is the code that each call fails with, a
/// number or a name; or an object as the document describes a fault, but without the kept answer,
/// and "error" may be missing where it would be null. Calls are counted anew, even if the call has
/// had an equal fault before. Whether it is a fault shows when the document is read. Throws
/// UnknownName, and std::runtime_error when something else than a call is there.
void FailCall(nlohmann::ordered_json& document, const KeyPath& path,
              const nlohmann::ordered_json& fault);

/// Restores what the call at @p path answered before it was made to fail. A call that does not fail
/// is left alone. Throws UnknownName, and std::runtime_error when something else than a call is
/// there, or a failure that was written by hand, so that the earlier answer is not known.
void HealCall(nlohmann::ordered_json& document, const KeyPath& path);

/// The list of notifications, created where there is none. Throws std::runtime_error when the
/// channel holds something else.
nlohmann::ordered_json& Notifications(nlohmann::ordered_json& document);

/// Adds @p notification. It replaces one with the same id.
void AddNotification(nlohmann::ordered_json& document, const nlohmann::ordered_json& notification);

/// Removes the notifications with the id @p id, or all if it is empty. Throws std::runtime_error
/// for an id that neither a notification nor a known type has.
void ClearNotifications(nlohmann::ordered_json& document, const std::string& id);

}  // namespace binding
