#include "bench/allocations.h"

#include <cstdlib>
#include <new>

namespace {

// Not atomic, because the benchmarks run in one thread.
std::size_t gAllocations = 0;

void* Allocate(std::size_t size) noexcept {
    ++gAllocations;
    return std::malloc(size == 0 ? 1 : size);
}

void* AllocateOrThrow(std::size_t size) {
    void* memory = Allocate(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

}  // namespace

void* operator new(std::size_t size) {
    return AllocateOrThrow(size);
}
void* operator new[](std::size_t size) {
    return AllocateOrThrow(size);
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return Allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return Allocate(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

namespace bench {

std::size_t Allocations() {
    return gAllocations;
}

CountAllocations::~CountAllocations() {
    const auto count = static_cast<double>(gAllocations - before);
    state.counters["allocations"] = benchmark::Counter(count, benchmark::Counter::kAvgIterations);
}

}  // namespace bench
