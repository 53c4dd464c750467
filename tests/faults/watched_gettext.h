// Tells another process whether one that died was in the C library's gettext.
#pragma once

namespace watched_gettext {

/// Before the processes that are to be watched, one at a time, are started.
void Start();

/// Whether the last process looked a text up and has not come back from it.
bool IsInside();

}  // namespace watched_gettext
