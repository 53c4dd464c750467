/* Preloaded into a service: makes allocations of its main thread fail on the order of a test, which
   shares a page of memory with it, and counts the blocks that the service holds. Allocations that
   libfcgi asks for are let pass and counted, unless it is their turn. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <execinfo.h>
#include <fcntl.h>
#include <malloc.h>
#include <stddef.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

struct orders {
    volatile int failing;      /* the n-th from now on fails; none for 0 */
    volatile int persistently; /* and all that follow */
    volatile int count;        /* allocations since the test set it to 0 */
    volatile int failed;       /* how many of them failed */
    volatile int passed;       /* how many would have, but were libfcgi's */
    volatile int libfcgi;      /* only libfcgi's fail, and only these are counted */
    long held;                 /* blocks of all threads, as a difference only */
    long bytes;                /* their sizes together, also as a difference only */
};

static struct orders none;
static struct orders* orders = &none;
static __thread int inside;

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void __libc_free(void* block);

__attribute__((constructor)) static void start(void) {
    const char* path = getenv("KESTAL_TEST_MEMORY");
    int file = path == NULL ? -1 : open(path, O_RDWR | O_CLOEXEC);
    void* frames[1];
    /* The first backtrace loads a library. */
    backtrace(frames, 1);
    if (file >= 0) {
        void* page = mmap(NULL, sizeof(struct orders), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        close(file);
        if (page != MAP_FAILED) {
            orders = page;
        }
    }
}

/* Whether the nearest caller outside of this library and of the C and C++ libraries is libfcgi. */
static int is_libfcgi(void) {
    void* frames[16];
    const int count = backtrace(frames, 16);
    Dl_info own;
    dladdr(&none, &own);
    for (int i = 0; i < count; ++i) {
        Dl_info info;
        if (dladdr(frames[i], &info) == 0 || info.dli_fbase == own.dli_fbase ||
            strstr(info.dli_fname, "/libc.so") != NULL || strstr(info.dli_fname, "/libstdc++.so") != NULL) {
            continue;
        }
        return strstr(info.dli_fname, "/libfcgi") != NULL;
    }
    return 0;
}

static int fails(void) {
    if (orders->failing == 0 || inside || gettid() != getpid()) {
        return 0;
    }
    inside = 1;
    int result = 0;
    if (!orders->libfcgi || is_libfcgi()) {
        const int number = ++orders->count;
        result = orders->persistently ? number >= orders->failing : number == orders->failing;
    }
    if (result && !orders->libfcgi && is_libfcgi()) {
        ++orders->passed;
        result = 0;
    }
    orders->failed += result;
    inside = 0;
    if (result) {
        errno = ENOMEM;
    }
    return result;
}

static void count(void* block, int sign) {
    if (block != NULL) {
        __atomic_add_fetch(&orders->held, sign, __ATOMIC_RELAXED);
        __atomic_add_fetch(&orders->bytes, sign * (long)malloc_usable_size(block), __ATOMIC_RELAXED);
    }
}

static void* held(void* block) {
    count(block, 1);
    return block;
}

void* malloc(size_t size) {
    return fails() ? NULL : held(__libc_malloc(size));
}

void* calloc(size_t count, size_t size) {
    return fails() ? NULL : held(__libc_calloc(count, size));
}

void* realloc(void* block, size_t size) {
    if (block == NULL) {
        return malloc(size);
    }
    if (size == 0) {
        free(block);
        return NULL;
    }
    if (fails()) {
        return NULL;
    }
    count(block, -1);
    void* const moved = __libc_realloc(block, size);
    count(moved == NULL ? block : moved, 1);
    return moved;
}

void free(void* block) {
    count(block, -1);
    __libc_free(block);
}
