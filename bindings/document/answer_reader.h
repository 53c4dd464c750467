// Reading what a call answers: a value, or the code that it fails with.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "bindings/device/device.h"
#include "bindings/document/node.h"

namespace binding {

/// Name of the member beside "error" that keeps the call's original answer, which healing the call
/// restores. Its value is null when the document had no entry for the call.
constexpr const char* kHealedName = "healed";

/// What an entry says instead of an answer.
struct Failure {
    int code = 0;  ///< code that every call fails with; 0 if not every call fails at once
    /// What happens to calls that otherwise answer as if healed.
    std::shared_ptr<Fault> fault = nullptr;
};

/// Reads @p node if it is an object with a member "error", which is never an answer; returns
/// nothing otherwise. @p readHealed(node) reads the kept answer, unless that is null.
Failure ReadFailure(const Node& node, const std::function<void(const Node&)>& readHealed);

/// Reads an answer whose value is read by @p readValue(node, value).
template <typename T, typename ReadValue>
void ReadAnswer(Node node, Answer<T>& answer, ReadValue readValue) {
    Answer<T> kept;
    const Failure failure =
        ReadFailure(node, [&](const Node& healed) { ReadAnswer(healed, kept, readValue); });
    if (failure.fault) {
        answer = std::move(kept);
        answer.fault = failure.fault;
        return;
    }
    answer.named = true;
    answer.error = failure.code;
    if (answer.error == 0) {
        node.AllowFailure();
        readValue(std::as_const(node), answer.value);
    }
}

/// Reads an object of answers.
template <typename T, typename ReadValue>
void ReadNamedAnswers(const Node& node, NamedAnswers<T>& answers, ReadValue readValue) {
    node.MustBeObject();
    for (const std::string& name : node.MemberNames()) {
        ReadAnswer(node.Member(name), answers[name], readValue);
    }
}

/// The same, but one failure for all names may stand in place of the object.
template <typename T, typename ReadValue>
void ReadNamedAnswers(const Node& node, Answer<NamedAnswers<T>>& answers, ReadValue readValue) {
    ReadAnswer(node, answers, [&](const Node& object, NamedAnswers<T>& named) {
        ReadNamedAnswers(object, named, readValue);
    });
}

}  // namespace binding
