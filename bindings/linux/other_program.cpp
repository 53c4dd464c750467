// Programs other than the service, which links service_program.cpp in place of this file.
#include "bindings/linux/service_program.h"

namespace binding {

const bool kIsService = false;

}  // namespace binding
