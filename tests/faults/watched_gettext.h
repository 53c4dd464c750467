// Tells whether another process, which has died, did so in gettext of the C library.
#pragma once

namespace watched_gettext {

/// Prepares the watch. Call it before the processes are started that are watched, one at a time.
void Start();

/// Whether the last process was still looking a text up when it ended.
bool IsInside();

}  // namespace watched_gettext
