// Reading what a call answers: a value, or the code that it fails with.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "bindings/device/device.h"
#include "bindings/document/node.h"

namespace binding {

/// Name of the member beside "error" that keeps the call's original answer, which healing the call
/// restores. Its value is null when the document had no entry for the call.
constexpr const char* kHealedName = "healed";

/// Returns N if @p node is `{"error": N}`, and 0 if it is something else. An object with a member
/// "error" may have only one other member: the kept answer, which @p checkHealed(node) checks.
int ReadFailure(const Node& node, const std::function<void(const Node&)>& checkHealed);

/// Reads an answer whose value is read by @p readValue(node, value).
template <typename T, typename ReadValue>
void ReadAnswer(Node node, Answer<T>& answer, ReadValue readValue) {
    answer.named = true;
    answer.error = ReadFailure(node, [&](const Node& healed) {
        Answer<T> ignored;
        ReadAnswer(healed, ignored, readValue);
    });
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
