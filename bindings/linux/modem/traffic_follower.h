// Which interface carries the data connection, and since when.
#pragma once

#include <string>

#include "bindings/linux/board.h"
#include "bindings/linux/modem/modem.h"

namespace binding {

/// Tells the board whose counters are those of the data connection. Where no interface counts, what
/// the bearer has counted stands; where that counts nothing either, the board still counts seconds.
class TrafficFollower {
  public:
    /// A call goes on while the board's settings change, and its figures do.
    explicit TrafficFollower(Board& newBoard)
        : board(newBoard), interface(board.Traffic() ? board.Traffic()->interface : "") {}

    /// @p managerInterface is the interface that NetworkManager names: a modem that dials has a
    /// serial port instead of one, and only whoever dials knows the interface.
    void Update(const Modem& modem, const std::string& managerInterface);
    void End();

  private:
    Board& board;
    std::string interface;
    /// Whether it has been seen that there is no connection, so that the next one begins now.
    bool seenDisconnected = false;
};

}  // namespace binding
