// Where the sessions are stored that people open when they log in.
#include "bindings/posix/session/session_store.h"

// A folder that only your login page and the service can write to, and that is empty after the
// device has started.
std::string binding::DefaultSessionStorePath() {
    return "/run/kestal/sessions";
}
