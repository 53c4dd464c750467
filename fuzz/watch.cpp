// Messages about calls, which kestal-sim watch reads. The input is one.
#include <array>

#include "bindings/simulator/watch/watch_message.h"
#include "fuzz/target.h"
#include "tools/kestal_sim/watched_call.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto message = binding::DecodedWatchMessage(std::as_bytes(std::span(data, size)));
    if (!message) {
        return 0;
    }
    const std::string line = LineAbout(*message);
    Require(line == WithoutControls(line), "a line is one line", line);
    std::array<std::byte, binding::kMostWatchBytes> room{};
    const auto written = binding::Encoded(*message, room);
    if (written.empty()) {
        return 0;
    }
    const auto again = binding::DecodedWatchMessage(written);
    Require(again && again->call == message->call && again->argument == message->argument &&
                again->request == message->request && again->program == message->program &&
                again->code == message->code && again->answerSize == message->answerSize,
            "what is written is read again");
    return 0;
}
