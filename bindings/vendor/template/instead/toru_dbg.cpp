// Logs of your own, instead of those in bindings/posix/log.
#include "platform/toru_dbg.h"

#include "../not_supported.h"

// Open the debug log.
int toru_dbg_start(const char* /*programName*/) {
    return kNotSupported;
}

// Close it.
void toru_dbg_stop() {}

// Format the line with vsnprintf and write it when your log's level is at least as high as this
// one.
void toru_dbg_log(const char* /*module*/, int /*level*/, const char* /*format*/, ...) {}

// Hand the line to vsyslog.
void toru_dbg_syslog(int /*priority*/, const char* /*format*/, ...) {}

// Name the levels as your log does; the service prints the name in each of its lines.
const char* toru_dbg_get_level_name(int /*level*/) {
    return "";
}
