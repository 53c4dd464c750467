// Helpers with which platform calls answer from the snapshot of the device.
#pragma once

#include <exception>
#include <memory>
#include <string_view>

#include "bindings/device/codes.h"
#include "bindings/device/device.h"
#include "bindings/device/fault.h"
#include "bindings/device/snapshot.h"
#include "bindings/log.h"

namespace binding {

/// Runs @p call() and returns its code. An exception is logged and becomes the code kBindingFailed,
/// to which @p codeBase is added.
template <typename Call>
int Guarded(int codeBase, Call call) noexcept {
    try {
        return call();
    } catch (const std::exception& error) {
        BINDING_LOG(TORU_DBG_ERROR, "%s", error.what());
        return codeBase + kBindingFailed;
    }
}

/// Runs @p call(device) through Guarded. The device is that of the calling thread's session or,
/// without a session, the current one.
template <typename Call>
int WithDevice(int codeBase, Call call) noexcept {
    return Guarded(codeBase, [&] {
        if (const Device* device = SessionDevice()) {
            return call(*device);
        }
        const std::shared_ptr<const Device> device = CurrentDevice();
        return device ? call(*device) : codeBase + kNoDevice;
    });
}

/// The code that a call with @p answer fails with; 0 when the answer has a value. Call it once for
/// each call, because a fault counts calls and may wait.
template <typename T>
int FailureOf(const Answer<T>& answer, int codeBase) {
    if (answer.fault != nullptr) [[unlikely]] {
        const int failure = Meet(*answer.fault, codeBase);
        if (failure != 0) {
            return failure;
        }
    }
    return answer.named ? answer.error : codeBase + kNotAnswered;
}

/// The same for a call with the index @p index.
template <typename T>
int FailureOf(const IndexedAnswer<T>& answer, int index, int codeBase) {
    if (answer.fault != nullptr) [[unlikely]] {
        const int failure = Meet(*answer.fault, codeBase);
        if (failure != 0) {
            return failure;
        }
    }
    return FailureOf(answer.At(index), codeBase);
}

/// Runs @p deliver on the answer for @p name. Fails with kNotAnswered when there is none, and when
/// @p name is null.
template <typename T, typename DeliverOne>
int DeliverNamed(const Answer<NamedAnswers<T>>& answers, const char* name, int codeBase,
                 DeliverOne deliver) {
    const int failure = FailureOf(answers, codeBase);
    if (failure != 0) {
        return failure;
    }
    const auto found =
        name == nullptr ? answers.value.end() : answers.value.find(std::string_view(name));
    return found == answers.value.end() ? codeBase + kNotAnswered : deliver(found->second);
}

}  // namespace binding
