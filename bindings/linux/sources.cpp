#include "bindings/linux/sources.h"

namespace binding {

Sources MakeSources(Board& /*board*/) {
    Sources sources;
    return sources;
}

}  // namespace binding
