// The device of the calls is the newest snapshot of the board.
#include "bindings/device/device_owner.h"

#include <cstdlib>
#include <memory>
#include <string>

#include "bindings/linux/board.h"
#include "bindings/linux/board_remark.h"
#include "bindings/linux/service_program.h"
#include "bindings/linux/sources.h"
#include "bindings/posix/session/session_store.h"

namespace binding {

namespace {

/// Ends the board when the process exits.
class Owner {
  public:
    Owner() = default;
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;

    ~Owner() {
        // After a crash of its own thread, the process exits on that thread, in the middle of an
        // event. Then the board stays as it is.
        if (board->IsOwnThread()) {
            (void)board.release();
        }
    }

    std::unique_ptr<Board> board = std::make_unique<Board>(MakeSources, LimitsOf(kIsService));
};

}  // namespace

Board& TheBoard() {
    // Built on first use: static objects of the product may call the platform.
    static Owner owner;
    return *owner.board;
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

std::string BoardRemark() {
    return TheBoard().IsWhole() ? ""
                                : "the system bus or a daemon does not answer; what it would tell "
                                  "counts as absent";
}

std::string DefaultSessionStorePath() {
    const char* const folder = std::getenv("RUNTIME_DIRECTORY");
    return std::string(folder == nullptr || *folder == '\0' ? "/run/kestal" : folder) + "/sessions";
}

}  // namespace binding
