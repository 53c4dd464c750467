// Programs of the tests have a longer limit, so it has a file that they link another one in place
// of.
#include "bindings/linux/snapshots.h"

namespace binding {

const std::chrono::milliseconds kFirstAnswerLimit{950};

}  // namespace binding
