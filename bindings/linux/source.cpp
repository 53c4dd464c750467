#include "bindings/linux/source.h"

#include <utility>

#include "bindings/linux/board.h"
#include "bindings/linux/log.h"

namespace binding {

Source::Source(Board& newBoard, std::string newName) : board(newBoard), name(std::move(newName)) {}

void Source::Present() {
    if (state == State::lost) {
        LINUX_LOG(TORU_DBG_NOTICE, "%s: is back", name.c_str());
    }
    reason.clear();
    Set(State::present);
}

void Source::Absent() {
    reason.clear();
    Set(State::absent);
}

void Source::Lost(const std::string& why) {
    if (state != State::lost) {
        LINUX_LOG(TORU_DBG_ERROR, "%s: lost: %s", name.c_str(), why.c_str());
    }
    reason = why;
    Set(State::lost);
}

void Source::Changed() {
    board.Changed();
}

void Source::Set(State newState) {
    if (state != newState) {
        state = newState;
        since = std::chrono::duration_cast<std::chrono::seconds>(
                    std::chrono::system_clock::now().time_since_epoch())
                    .count();
    }
    board.Changed();
}

const char* StateName(Source::State state) {
    switch (state) {
        case Source::State::unknown:
            return "unknown";
        case Source::State::absent:
            return "absent";
        case Source::State::present:
            return "present";
        case Source::State::lost:
            return "lost";
    }
    return "unknown";
}

}  // namespace binding
