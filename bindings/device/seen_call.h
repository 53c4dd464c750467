// Calls of the platform, for whoever watches them. While nobody does, a call only loads a pointer.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

#include "bindings/device/fault.h"

namespace binding {

/// What a call is given besides room for its answer.
struct CallArgument {
    CallArgument() = default;
    // Implicit, so that a call can name its parameter. A null pointer counts as an empty text.
    // cppcheck-suppress noExplicitConstructor ; so that a call can name its parameter
    // NOLINTNEXTLINE(google-explicit-constructor)
    CallArgument(const char* newText) : text(newText == nullptr ? "" : newText) {}
    // cppcheck-suppress noExplicitConstructor ; so that a call can name its parameter
    // NOLINTNEXTLINE(google-explicit-constructor)
    CallArgument(std::string_view newText) : text(newText) {}
    // cppcheck-suppress noExplicitConstructor ; so that a call can name its parameter
    // NOLINTNEXTLINE(google-explicit-constructor)
    CallArgument(int newNumber) : number(newNumber) {}

    std::string_view text;
    std::optional<int> number;
};

/// A call that has returned.
struct SeenCall {
    std::string_view name;  ///< such as "sys_getSIMStatus"
    CallArgument argument;
    int code = 0;
    std::chrono::nanoseconds time{0};
    /// What has been delivered to the caller, as it is in memory; empty if the call has failed.
    std::span<const std::byte> answer;
};

/// Watches the calls of all threads. Must neither throw nor wait.
class CallWatcher {
  public:
    CallWatcher() = default;
    CallWatcher(const CallWatcher&) = delete;
    CallWatcher& operator=(const CallWatcher&) = delete;
    virtual ~CallWatcher() = default;

    virtual void Saw(const SeenCall& call) noexcept = 0;

    /// A call begins to wait because of a fault that makes it slow or hang.
    virtual void Waits(const FaultPlan& plan) noexcept = 0;
};

/// Whoever watches; null if nobody does. It stays until the process ends.
extern std::atomic<CallWatcher*> theCallWatcher;

/// Tells the watcher, if there is one, that the call @p name has returned @p code. It began at @p
/// begin. @p answer() is what it has delivered, and is only called if it has succeeded.
template <typename Answer>
int Seen(std::string_view name, const CallArgument& argument,
         std::chrono::steady_clock::time_point begin, int code, int success,
         Answer answer) noexcept {
    if (CallWatcher* const watcher = theCallWatcher) [[unlikely]] {
        const auto time = std::chrono::steady_clock::now() - begin;
        std::span<const std::byte> bytes;
        if (code == success) {
            bytes = answer();
        }
        watcher->Saw({name, argument, code, time, bytes});
    }
    return code;
}

/// Makes @p call() and returns its code. If somebody watches, measures its time and tells them.
template <typename Call, typename Answer>
int Watched(std::string_view name, const CallArgument& argument, int success, Call call,
            Answer answer) noexcept {
    if (theCallWatcher == nullptr) [[likely]] {
        return call();
    }
    const auto begin = std::chrono::steady_clock::now();
    return Seen(name, argument, begin, call(), success, answer);
}

/// The answer of a call that delivers nothing.
inline std::span<const std::byte> NoAnswer() {
    return {};
}

/// @p value as it is in memory.
template <typename T>
std::span<const std::byte> BytesOf(const T& value) {
    return std::as_bytes(std::span(&value, 1));
}

}  // namespace binding
