// How long the list of notifications takes, for several numbers of records.
#include <benchmark/benchmark.h>

#include <string>

#include "bench/allocations.h"
#include "bench/device.h"
#include "components/systemservice/service_api.h"
#include "components/systemservice/system_service_component.h"

namespace {

void Notifications(benchmark::State& state) {
    const bench::DeviceInSession device(static_cast<int>(state.range(0)));
    SystemServiceComponent component;
    const bench::CountAllocations count(state);
    for (auto _ : state) {
        CTPP::CDT answer;
        component.Dispatch(answer, SERVICE_API_NOTIFICATION);
        std::string json;
        CTPP::CDT2JSON(answer, json);
        benchmark::DoNotOptimize(json);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(Notifications)->Arg(0)->Arg(10)->Arg(100)->Arg(1000)->Arg(10000);

}  // namespace
