// Preloaded into the service, this library leaks 300 bytes in every request, or in every
// KESTAL_LEAK_EVERY-th, to prove that the soak detects a leak.
#include <dlfcn.h>
#include <fcgiapp.h>

#include <cstdlib>
#include <cstring>

namespace {

constexpr std::size_t kLost = 300;

void* volatile theLost = nullptr;

int Every() {
    const char* const every = std::getenv("KESTAL_LEAK_EVERY");
    return every == nullptr ? 1 : std::atoi(every);
}

}  // namespace

extern "C" void FCGX_Finish_r(FCGX_Request* request) {
    using Finish = void (*)(FCGX_Request*);
    static const auto finish = reinterpret_cast<Finish>(dlsym(RTLD_NEXT, "FCGX_Finish_r"));
    static const int every = Every();
    static int requests = 0;
    if (++requests % every == 0) {
        theLost = std::memset(std::malloc(kLost), 1, kLost);
    }
    finish(request);
}
