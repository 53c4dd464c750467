// The sources of a board.
#pragma once

#include "bindings/linux/board.h"

namespace binding {

Sources MakeSources(Board& board);

}  // namespace binding
