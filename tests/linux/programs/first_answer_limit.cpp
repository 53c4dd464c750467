// In place of the limit of the shipped service, which the daemons of a busy machine may miss.
#include "bindings/linux/snapshots.h"

namespace binding {

const std::chrono::milliseconds kFirstAnswerLimit{60'000};

}  // namespace binding
