// The status data set: each group, and the whole operation with its JSON.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "bench/allocations.h"
#include "bench/device.h"
#include "components/status/status_component.h"
#include "components/systemservice/service_api.h"
#include "components/systemservice/system_service_component.h"

namespace {

using Group = void (StatusComponent::*)(CTPP::CDT&);

void StatusGroup(benchmark::State& state, Group group) {
    const bench::DeviceInSession device;
    StatusComponent component;
    component.Init("");
    const bench::CountAllocations count(state);
    for (auto _ : state) {
        CTPP::CDT statusData(CTPP::CDT::HASH_VAL);
        (component.*group)(statusData);
        benchmark::DoNotOptimize(statusData);
    }
}

#define STATUS_GROUP(name) BENCHMARK_CAPTURE(StatusGroup, name, &StatusComponent::name)
STATUS_GROUP(GetBatteryStatus);
STATUS_GROUP(GetMnsStatus);
STATUS_GROUP(GetInternetStatus);
STATUS_GROUP(GetRouterStatus);
STATUS_GROUP(GetMobileDataEnabled);
STATUS_GROUP(GetEthernetPortEnabled);
STATUS_GROUP(GetFotaInstallStatus);
STATUS_GROUP(GetWifiStatus);
STATUS_GROUP(GetNotificationFlagStatus);
STATUS_GROUP(GetGpsStatus);
STATUS_GROUP(GetSmsStatus);
STATUS_GROUP(GetSmbStatus);
STATUS_GROUP(GetGuestWifiStatus);
STATUS_GROUP(GetSoftwareUpdateStatus);
STATUS_GROUP(GetSimStatus);
STATUS_GROUP(GetDualSimStatus);
#undef STATUS_GROUP

void Status(benchmark::State& state) {
    const bench::DeviceInSession device;
    SystemServiceComponent component;
    CTPP::CDT warm;
    component.Dispatch(warm, SERVICE_API_STATUS);
    const bench::CountAllocations count(state);
    for (auto _ : state) {
        CTPP::CDT answer;
        component.Dispatch(answer, SERVICE_API_STATUS);
        benchmark::DoNotOptimize(answer);
    }
}
BENCHMARK(Status);

void StatusAsJson(benchmark::State& state) {
    const bench::DeviceInSession device;
    SystemServiceComponent component;
    CTPP::CDT warm;
    component.Dispatch(warm, SERVICE_API_STATUS);
    const bench::CountAllocations count(state);
    for (auto _ : state) {
        CTPP::CDT answer;
        component.Dispatch(answer, SERVICE_API_STATUS);
        std::string json;
        CTPP::CDT2JSON(answer, json);
        benchmark::DoNotOptimize(json);
    }
}
BENCHMARK(StatusAsJson);

}  // namespace
