// Counts the allocations of the whole process and makes them fail on demand, except for those of
// the platform. In a sanitized build, it sees the allocations of C++ and the product's calls of
// calloc only; otherwise all allocations, those of the system library and of other libraries
// included.
#pragma once

namespace failing_memory {

/// Makes the @p n-th allocation from now on fail, counted from 1, and with @p persistently all that
/// follow it. With 0, none fails.
void FailAt(long n, bool persistently);

/// Lets allocations succeed again. Returns how many there were since FailAt.
long Stop();

/// Whether the C library itself made one of the allocations that have failed since FailAt.
bool FailedInCLibrary();

/// Blocks that have been allocated and not been freed.
long Outstanding();

}  // namespace failing_memory
