// The service links this file in place of other_program.cpp.
#include "bindings/linux/service_program.h"

namespace binding {

const bool kIsService = true;

}  // namespace binding
