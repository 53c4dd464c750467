// The memory of the whole process: it counts, and fails when told to. Nothing inside the platform
// fails. Sanitized, only what C++ allocates and what the product asks of calloc goes through here;
// otherwise everything does, the allocations of the system library and the other libraries
// included.
#pragma once

namespace failing_memory {

/// From now on the @p n-th allocation fails, from 1; with @p persistently, all that follow, too.
/// For 0, none does.
void FailAt(long n, bool persistently);

/// Nothing fails from now on. Returns how many allocations there were since FailAt.
long Stop();

/// Whether the C library itself asked for one of those that failed since FailAt.
bool FailedInCLibrary();

/// Blocks that have been allocated and not been freed.
long Outstanding();

}  // namespace failing_memory
