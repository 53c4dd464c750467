// Finds out whether another process crashed while it was in the C library's gettext.
#pragma once

namespace watched_gettext {

/// Call this before each process that is to be watched is started. Only one process at a time can
/// be watched.
void Start();

/// Whether the process was still in gettext when it ended.
bool IsInside();

}  // namespace watched_gettext
