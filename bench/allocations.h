// Counts the allocations of a benchmark.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>

namespace bench {

/// The number of allocations by operator new in this process so far.
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
