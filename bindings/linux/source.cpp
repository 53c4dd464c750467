#include "bindings/linux/source.h"

#include <exception>
#include <utility>

#include "bindings/linux/board.h"
#include "bindings/linux/log.h"

namespace binding {

Source::Source(Board& newOwner, std::string newName)
    : ownerBoard(newOwner), ownName(std::move(newName)) {}

void Source::Begin() {
    try {
        Start();
    } catch (const std::exception& error) {
        Lost(std::string("not started: ") + error.what());
    }
}

void Source::Present() {
    Found(State::present);
}

void Source::Absent() {
    // A daemon may come back before its hardware does.
    Found(State::absent);
}

void Source::Found(State newState) {
    if (currentState == State::lost) {
        LINUX_LOG(TORU_DBG_NOTICE, "%s: is back", ownName.c_str());
    }
    lossReason.clear();
    SetState(newState);
}

void Source::Lost(const std::string& why) {
    if (currentState != State::lost) {
        LINUX_LOG(TORU_DBG_ERROR, "%s: lost: %s", ownName.c_str(), why.c_str());
    }
    lossReason = why;
    SetState(State::lost);
}

void Source::Changed() {
    ownerBoard.Changed();
}

void Source::SetState(State newState) {
    if (currentState != newState) {
        currentState = newState;
        stateSince = std::chrono::duration_cast<std::chrono::seconds>(
                         std::chrono::system_clock::now().time_since_epoch())
                         .count();
    }
    ownerBoard.Changed();
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
