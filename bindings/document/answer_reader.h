// Reading what a call answers: a value, or the code that it fails with.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "bindings/device/device.h"
#include "bindings/document/node.h"

namespace binding {

/// Member beside "error" that keeps what the call answers when it is healed; null when the document
/// did not name it.
constexpr const char* kHealedName = "healed";

/// The code of `{"error": N}`; 0 when @p node is something else. An object that names "error" must
/// be exactly that, but for what it keeps, which @p checkHealed(node) reads.
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

/// The same, in place of which there may be one failure for all.
template <typename T, typename ReadValue>
void ReadNamedAnswers(const Node& node, Answer<NamedAnswers<T>>& answers, ReadValue readValue) {
    ReadAnswer(node, answers, [&](const Node& object, NamedAnswers<T>& named) {
        ReadNamedAnswers(object, named, readValue);
    });
}

}  // namespace binding
