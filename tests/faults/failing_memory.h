// Counts the allocations of the whole process, except those of the platform, and makes them fail on
// demand. In a sanitized build, it sees only the allocations by operator new and the product's
// calls of calloc; otherwise it sees all allocations, including those of the C library and of
// other libraries.
#pragma once

namespace failing_memory {

/// Makes the @p n-th allocation from now on fail, counted from 1. If @p persistently, all later
/// ones fail, too. With 0, none fails.
void FailAt(long n, bool persistently);

/// Lets allocations succeed again. Returns the number of allocations since FailAt.
long Stop();

/// Whether the C library made one of the allocations that have failed since FailAt.
bool FailedInCLibrary();

/// The number of blocks that have been allocated and not been freed.
long Outstanding();

}  // namespace failing_memory
