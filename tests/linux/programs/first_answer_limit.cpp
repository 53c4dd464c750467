// In place of the binding's own limit, which the daemons of a busy machine may miss.
#include "bindings/linux/snapshots.h"

namespace binding {

const std::chrono::milliseconds kFirstAnswerLimit{60'000};

}  // namespace binding
