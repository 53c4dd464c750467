// What a process that makes calls of the platform sends to whoever watches them: one message for
// each call, and one for each call that begins to wait.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace binding {

/// The longest message.
constexpr std::size_t kMostWatchBytes = 8192;

enum class WatchKind : std::uint32_t {
    call = 1,  ///< a call has returned
    waits = 2  ///< a call waits because it is slow; `time` is how long
};

/// A wait without an end.
constexpr std::chrono::nanoseconds kForEver = std::chrono::nanoseconds::max();

struct WatchMessage {
    WatchKind kind = WatchKind::call;
    std::int32_t code = 0;
    std::chrono::nanoseconds time{0};
    std::uint64_t missed = 0;  ///< messages that have not been sent since the last one
    std::string_view program = {};
    std::string_view request = {};  ///< of the first call of a session, if it is known
    std::string_view call = {};     ///< the call; for a wait as a document names it
    std::string_view argument = {};
    std::span<const std::byte> answer = {};  ///< as it is in memory, or only its beginning
    std::uint64_t answerSize = 0;            ///< size of the whole answer
};

/// Writes @p message to @p room, with as much of the answer as there is room for, and returns what
/// has been written; empty if there is not even room for the rest.
std::span<const std::byte> Encoded(const WatchMessage& message, std::span<std::byte> room);

/// Reads a message; its texts and its answer are parts of @p bytes. Nothing if it is none, or one
/// of another version.
std::optional<WatchMessage> DecodedWatchMessage(std::span<const std::byte> bytes);

/// The socket on which somebody may watch the calls that are made on the document @p device.
std::string WatchSocketPath(const std::string& device);

}  // namespace binding
