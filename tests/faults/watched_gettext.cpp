#include "tests/faults/watched_gettext.h"

#include <libintl.h>
#include <sys/mman.h>

#include <clocale>
#include <new>

namespace {

/// In memory that the processes share.
volatile bool* gInside = nullptr;

void SetInside(bool inside) {
    if (gInside != nullptr) {
        *gInside = inside;
    }
}

}  // namespace

namespace watched_gettext {

void Start() {
    if (gInside == nullptr) {
        void* const page = mmap(nullptr, sizeof(*gInside), PROT_READ | PROT_WRITE,
                                MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (page == MAP_FAILED) {
            throw std::bad_alloc();
        }
        gInside = static_cast<volatile bool*>(page);
    }
    *gInside = false;
}

bool IsInside() {
    return gInside != nullptr && *gInside;
}

}  // namespace watched_gettext

// Replaces the function of the C library and calls it.
char* dgettext(const char* domain, const char* id) noexcept {
    SetInside(true);
    char* const text = dcgettext(domain, id, LC_MESSAGES);
    SetInside(false);
    return text;
}
