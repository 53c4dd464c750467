// Counts what a benchmark allocates.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>

namespace bench {

/// Allocations by operator new in this process so far.
std::size_t Allocations();

/// Reports the allocations of one iteration as the counter "allocations" of a benchmark.
class CountAllocations {
  public:
    explicit CountAllocations(benchmark::State& benchmarkState)
        : state(benchmarkState), before(Allocations()) {}
    ~CountAllocations();
    CountAllocations(const CountAllocations&) = delete;
    CountAllocations& operator=(const CountAllocations&) = delete;

  private:
    benchmark::State& state;
    std::size_t before;
};

}  // namespace bench
