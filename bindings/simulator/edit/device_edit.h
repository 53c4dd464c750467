// Changes of a device document.
//
// A call that has been made to fail keeps in its entry what it answers when it is healed. Until
// then changes of its value change what it keeps.
#pragma once

#include <cstdint>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "bindings/document/document_error.h"

namespace binding {

/// Changes the document at @p path for every process, in one step, when the simulator's reader
/// accepts what @p change makes of it. Throws std::runtime_error and what @p change throws, and
/// leaves the document as it is then.
void ChangeDevice(const std::string& path,
                  const std::function<void(nlohmann::ordered_json&)>& change);

/// The document @p text of the file @p file. Throws std::runtime_error, with a suggestion
/// for an unknown name, unless it is a good one.
nlohmann::ordered_json ReadGoodDocument(const std::string& file, const std::string& text);

/// Throws ValueError, with a suggestion for an unknown name, unless the simulator's reader
/// accepts @p document.
void MustBeGood(const nlohmann::ordered_json& document);

/// Puts @p value at @p path. Objects on the way are made where there is nothing; a list can be
/// added to at its end. Throws std::runtime_error for another position, and for a name in what is
/// no object.
void SetValue(nlohmann::ordered_json& document, const KeyPath& path, nlohmann::ordered_json value);

/// The call on the way of @p path that has been made to fail; empty when there is none.
KeyPath FailingCallOn(const nlohmann::ordered_json& document, const KeyPath& path);

/// How a number moves, and how far it may.
struct Move {
    std::int64_t by = 0;
    std::optional<std::int64_t> least = std::nullopt;
    std::optional<std::int64_t> most = std::nullopt;
};

/// Moves the integer at @p path, to its limit at most. One that is outside the limits already stays
/// where somebody has put it. Throws std::runtime_error when there is no integer, or when the
/// result is none of 64 bits.
void MoveNumber(nlohmann::ordered_json& document, const KeyPath& path, const Move& move);

/// Makes the call at @p path fail with @p code. Throws UnknownName, and std::runtime_error for what
/// is no call.
void FailCall(nlohmann::ordered_json& document, const KeyPath& path, std::int64_t code);

/// Gives the call at @p path back what it answered before it was made to fail. One that does not
/// fail stays as it is. Throws UnknownName, and std::runtime_error for what is no call and for a
/// call whose failure was written by hand, of which nothing else is known.
void HealCall(nlohmann::ordered_json& document, const KeyPath& path);

/// The list of notifications, made where there is nothing. Throws std::runtime_error when the
/// channel holds something else.
nlohmann::ordered_json& Notifications(nlohmann::ordered_json& document);

/// Adds @p notification, in place of one with the same id.
void AddNotification(nlohmann::ordered_json& document, const nlohmann::ordered_json& notification);

/// Takes the notifications with the id @p id away, or all for an empty one. Throws
/// std::runtime_error for an id that is neither there nor that of a known type.
void ClearNotifications(nlohmann::ordered_json& document, const std::string& id);

}  // namespace binding
