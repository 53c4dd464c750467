// In a file of its own, because the service of the tests is linked with a longer limit instead.
#include "bindings/linux/snapshots.h"

namespace binding {

const std::chrono::milliseconds kFirstAnswerLimit{950};

}  // namespace binding
