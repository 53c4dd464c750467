// The device of the calls is the newest snapshot of the board.
#include "bindings/device/device_owner.h"

#include <cstdlib>
#include <memory>
#include <string>

#include "bindings/linux/board.h"
#include "bindings/linux/sources.h"
#include "bindings/posix/session/session_store.h"

namespace binding {

Board& TheBoard() {
    // Built on first use: static objects of the product may call the platform.
    static Board board(MakeSources);
    return board;
}

std::shared_ptr<const Device> NewestDevice() {
    return TheBoard().Newest();
}

int StartDataCall() {
    return TheBoard().StartDataCall();
}

int StopDataCall() {
    return TheBoard().StopDataCall();
}

std::string DefaultSessionStorePath() {
    const char* const folder = std::getenv("RUNTIME_DIRECTORY");
    return std::string(folder == nullptr || *folder == '\0' ? "/run/kestal" : folder) + "/sessions";
}

}  // namespace binding
