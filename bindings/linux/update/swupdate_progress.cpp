#include "bindings/linux/update/swupdate_progress.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "bindings/linux/bus/tree.h"
#include "bindings/linux/text.h"
#include "platform/fixed_text.h"

namespace binding {

namespace {

/// A message as SWUpdate 2022.05 and later send it.
struct Message {
    std::uint32_t version;
    std::uint32_t status;
    std::uint32_t downloadPercent;
    std::uint64_t downloadBytes;
    std::uint32_t steps;
    std::uint32_t step;
    std::uint32_t stepPercent;
    char image[256];
    char handler[64];
    std::uint32_t source;
    std::uint32_t infoLength;
    char info[2048];
};
static_assert(sizeof(void*) == 4 || sizeof(Message) == 2416);

/// What SWUpdate 2023.05 and later send first.
struct Greeting {
    std::uint32_t version;
    char word[4];
};
constexpr std::array<char, 4> kGreetingWord = {'A', 'C', 'K', '\0'};

/// Values of Message::status.
enum Status : std::uint32_t {
    kIdle = 0,
    kStart = 1,
    kRun = 2,
    kSuccess = 3,
    kFailure = 4,
    kDownload = 5,
    kDone = 6,
    kSubprocess = 7,
    kProgress = 8,
};

/// Values of Message::source of what a user does.
enum Source : std::uint32_t {
    kWebServer = 1,
    kLocal = 4,
};

/// Share of all steps that is done, in percent.
std::int32_t Percent(const Message& message) {
    const std::uint64_t steps = std::max<std::uint64_t>(message.steps, 1);
    const std::uint64_t before = std::max<std::uint64_t>(message.step, 1) - 1;
    const std::uint64_t here = std::min<std::uint64_t>(message.stepPercent, 100);
    return static_cast<std::int32_t>(std::min<std::uint64_t>((before * 100 + here) / steps, 100));
}

/// The version in what SWUpdate tells about an update, like {"0": {"VERSION": "2.0"}}; empty when
/// it tells none. Nothing when @p info is another text.
std::optional<std::string> VersionIn(const std::string& info) {
    const nlohmann::json told = nlohmann::json::parse(info, nullptr, false);
    if (!told.is_object()) {
        return std::nullopt;
    }
    for (const nlohmann::json& part : told) {
        if (const auto version = Text(part, "VERSION")) {
            return Printable(*version, 255);
        }
    }
    return "";
}

}  // namespace

bool SwupdateProgress::Read(std::span<const std::byte> bytes) {
    const UpdateState before = state;
    begun.insert(begun.end(), bytes.begin(), bytes.end());
    if (!greeted && begun.size() >= sizeof(Greeting)) {
        greeted = true;
        if (std::memcmp(begun.data() + offsetof(Greeting, word), kGreetingWord.data(),
                        kGreetingWord.size()) == 0) {
            begun.erase(begun.begin(), begun.begin() + sizeof(Greeting));
        }
    }
    if (greeted && begun.size() >= sizeof(Message)) {
        TakeMessages();
    }
    return state != before;
}

void SwupdateProgress::TakeMessages() {
    problem.clear();
    std::size_t used = 0;
    while (begun.size() - used >= sizeof(Message)) {
        const bool isKnown = Take(std::span(begun).subspan(used, sizeof(Message)));
        used += sizeof(Message);
        if (!isKnown && (begun.size() - used) % sizeof(Message) != 0) {
            // Messages begin elsewhere, for instance after another greeting. SWUpdate sends each at
            // once, so the next bytes are the begin of one.
            used = begun.size();
        }
    }
    begun.erase(begun.begin(), begun.begin() + static_cast<std::ptrdiff_t>(used));
}

void SwupdateProgress::Restart() {
    begun.clear();
    greeted = false;
    problem.clear();
    if (state.status == UpdateStatus::downloading || state.status == UpdateStatus::installing) {
        state = UpdateState();
    }
}

bool SwupdateProgress::Take(std::span<const std::byte> bytes) {
    Message message{};
    std::memcpy(&message, bytes.data(), sizeof(message));
    UpdateState next;
    const std::string info = FixedText(message.info);
    const std::optional<std::string> version = VersionIn(info);
    next.version = version.value_or("");
    switch (message.status) {
        case kDownload:
            next.status = UpdateStatus::downloading;
            next.percent =
                static_cast<std::int32_t>(std::min<std::uint32_t>(message.downloadPercent, 100));
            break;
        case kStart:
        case kRun:
        case kProgress:
            next.status = UpdateStatus::installing;
            next.percent = Percent(message);
            break;
        case kSuccess:
            next.status = UpdateStatus::installed;
            next.percent = 100;
            break;
        case kFailure:
            next.status = UpdateStatus::failed;
            next.problem = version ? "" : Printable(info, 256);
            break;
        case kIdle:
            if (state.status == UpdateStatus::downloading ||
                state.status == UpdateStatus::installing) {
                break;
            }
            // It follows a result, which stays.
            return true;
        case kDone:
        case kSubprocess:
            // What they say is of no concern here.
            return true;
        default:
            problem = "what SWUpdate sends is no message or has an unknown state, " +
                      std::to_string(message.status);
            return false;
    }
    next.userInitiated = message.source == kWebServer || message.source == kLocal;
    state = std::move(next);
    return true;
}

}  // namespace binding
