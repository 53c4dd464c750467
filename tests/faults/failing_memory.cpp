#include "tests/faults/failing_memory.h"

#include <dlfcn.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <string_view>

#include "bindings/recording/recording.h"

/// The caller of the function that uses this macro.
#define CALLER __builtin_return_address(0)

namespace {

/// Larger blocks are always refused: no list of a device needs one, and otherwise the result would
/// depend on the memory of the machine.
constexpr std::size_t kLargestBlock = std::size_t{1} << 30U;

bool gInCLibrary = false;
bool gArmed = false;
bool gPersistently = false;
long gFailing = 0;
long gCount = 0;
long gOutstanding = 0;

/// Whether an allocation of @p size bytes by @p caller succeeds. Counts the allocation.
bool Grants(std::size_t size, const void* caller) {
    if (size > kLargestBlock) {
        return false;
    }
    if (!gArmed || recording::IsInsidePlatform()) {
        return true;
    }
    ++gCount;
    if (gFailing == 0 || (gPersistently ? gCount < gFailing : gCount != gFailing)) {
        return true;
    }
    Dl_info library{};
    if (dladdr(caller, &library) != 0 &&
        std::string_view(library.dli_fname).find("/libc.so") != std::string_view::npos) {
        gInCLibrary = true;
    }
    return false;
}

bool GrantsAll(std::size_t count, std::size_t size, const void* caller) {
    const bool countable = size == 0 || count <= kLargestBlock / size;
    return Grants(countable ? count * size : kLargestBlock + 1, caller);
}

void* Counted(void* block) {
    if (block != nullptr) {
        ++gOutstanding;
    }
    return block;
}

}  // namespace

namespace failing_memory {

void FailAt(long n, bool persistently) {
    gFailing = n;
    gPersistently = persistently;
    gCount = 0;
    gInCLibrary = false;
    gArmed = true;
}

long Stop() {
    gArmed = false;
    return gCount;
}

bool FailedInCLibrary() {
    return gInCLibrary;
}

long Outstanding() {
    return gOutstanding;
}

}  // namespace failing_memory

// The linker replaces the program's own calls of calloc by this function (--wrap=calloc).
extern "C" {
void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
}

#if defined(__SANITIZE_ADDRESS__)

/// The block is not counted as outstanding, because the sanitizer's free cannot be observed.
void* __wrap_calloc(std::size_t count, std::size_t size) {
    return GrantsAll(count, size, CALLER) ? __real_calloc(count, size) : nullptr;
}

namespace {

void* Allocate(std::size_t size) {
    void* const block = Grants(size, CALLER) ? Counted(std::malloc(size)) : nullptr;
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void* AllocateOrNull(std::size_t size) {
    return Grants(size, CALLER) ? Counted(std::malloc(size)) : nullptr;
}

void Release(void* block) {
    if (block != nullptr) {
        --gOutstanding;
    }
    std::free(block);
}

}  // namespace

void* operator new(std::size_t size) {
    return Allocate(size);
}
void* operator new[](std::size_t size) {
    return Allocate(size);
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return AllocateOrNull(size);
}
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return AllocateOrNull(size);
}
void operator delete(void* block) noexcept {
    Release(block);
}
void operator delete[](void* block) noexcept {
    Release(block);
}
void operator delete(void* block, std::size_t /*size*/) noexcept {
    Release(block);
}
void operator delete[](void* block, std::size_t /*size*/) noexcept {
    Release(block);
}
void operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept {
    Release(block);
}
void operator delete[](void* block, const std::nothrow_t& /*tag*/) noexcept {
    Release(block);
}

#else

// The names under which the C library's own functions are available although they are replaced.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);

void* malloc(std::size_t size) {
    if (!Grants(size, CALLER)) {
        errno = ENOMEM;
        return nullptr;
    }
    return Counted(__libc_malloc(size));
}

static void* AllocateCleared(std::size_t count, std::size_t size, const void* caller) {
    if (!GrantsAll(count, size, caller)) {
        errno = ENOMEM;
        return nullptr;
    }
    return Counted(__libc_calloc(count, size));
}

void* calloc(std::size_t count, std::size_t size) {
    return AllocateCleared(count, size, CALLER);
}

// Does not call calloc, for which some linkers would take this function itself.
void* __wrap_calloc(std::size_t count, std::size_t size) {
    return AllocateCleared(count, size, CALLER);
}

void* realloc(void* block, std::size_t size) {
    if (size != 0 && !Grants(size, CALLER)) {
        errno = ENOMEM;
        return nullptr;
    }
    void* const moved = __libc_realloc(block, size);
    if (block == nullptr && moved != nullptr) {
        ++gOutstanding;
    } else if (block != nullptr && moved == nullptr && size == 0) {
        --gOutstanding;
    }
    return moved;
}

void* memalign(std::size_t alignment, std::size_t size) {
    return Grants(size, CALLER) ? Counted(__libc_memalign(alignment, size)) : nullptr;
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
    *block = memalign(alignment, size);
    return *block == nullptr ? ENOMEM : 0;
}

void free(void* block) {
    if (block != nullptr) {
        --gOutstanding;
    }
    __libc_free(block);
}
}

#endif
