#include "bindings/simulator/watch/watch_message.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace binding {

namespace {

/// To be changed with the form of the messages.
constexpr std::uint64_t kForm = 0x4b57415443480001;

/// How a message begins. The texts follow in the order of their sizes, then the answer.
struct Head {
    std::uint64_t form;
    std::uint64_t nanoseconds;
    std::uint64_t missed;
    std::uint64_t answerSize;
    std::uint32_t kind;
    std::int32_t code;
    std::array<std::uint32_t, 4> texts;
};
static_assert(sizeof(Head) == 56);

}  // namespace

std::span<const std::byte> Encoded(const WatchMessage& message, std::span<std::byte> room) {
    const std::array<std::string_view, 4> texts = {message.program, message.request, message.call,
                                                   message.argument};
    Head head{.form = kForm,
              .nanoseconds = static_cast<std::uint64_t>(message.time.count()),
              .missed = message.missed,
              .answerSize = message.answerSize,
              .kind = static_cast<std::uint32_t>(message.kind),
              .code = message.code,
              .texts = {}};
    std::size_t size = sizeof head;
    for (std::size_t index = 0; index < texts.size(); ++index) {
        head.texts.at(index) = static_cast<std::uint32_t>(texts.at(index).size());
        size += texts.at(index).size();
    }
    if (size > room.size()) {
        return {};
    }
    std::memcpy(room.data(), &head, sizeof head);
    std::span<std::byte> rest = room.subspan(sizeof head);
    for (const std::string_view text : texts) {
        std::copy_n(std::as_bytes(std::span(text)).begin(), text.size(), rest.begin());
        rest = rest.subspan(text.size());
    }
    const std::size_t answer = std::min(message.answer.size(), rest.size());
    std::copy_n(message.answer.begin(), answer, rest.begin());
    return room.first(size + answer);
}

std::optional<WatchMessage> DecodedWatchMessage(std::span<const std::byte> bytes) {
    Head head{};
    if (bytes.size() < sizeof head) {
        return std::nullopt;
    }
    std::memcpy(&head, bytes.data(), sizeof head);
    if (head.form != kForm) {
        return std::nullopt;
    }
    std::span<const std::byte> rest = bytes.subspan(sizeof head);
    std::array<std::string_view, 4> texts;
    for (std::size_t index = 0; index < texts.size(); ++index) {
        const std::size_t size = head.texts.at(index);
        if (size > rest.size()) {
            return std::nullopt;
        }
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): bytes of a text
        texts.at(index) = {reinterpret_cast<const char*>(rest.data()), size};
        rest = rest.subspan(size);
    }
    return WatchMessage{.kind = static_cast<WatchKind>(head.kind),
                        .code = head.code,
                        .time = std::chrono::nanoseconds(head.nanoseconds),
                        .missed = head.missed,
                        .program = texts[0],
                        .request = texts[1],
                        .call = texts[2],
                        .argument = texts[3],
                        .answer = rest,
                        .answerSize = head.answerSize};
}

std::string WatchSocketPath(const std::string& device) {
    return device + ".watch";
}

}  // namespace binding
