// platform/sysint.h.
#include "platform/sysint.h"

#include <initializer_list>
#include <optional>

#include "conformance/list.h"
#include "conformance/query.h"
#include "conformance/sections/sections.h"
#include "platform/sysint_queries.h"

namespace conformance {

namespace {

/// The range of values that a number with this meaning may have. There is no range for an
/// enumeration that a device may extend.
template <typename Meaning>
constexpr std::optional<Bounds> kBounds = std::nullopt;
template <>
constexpr std::optional<Bounds> kBounds<bool> = Bounds{0, 1};
template <>
constexpr std::optional<Bounds> kBounds<sys_data_connection_status_e> =
    Bounds{SYS_DATA_CONNECTION_READY, SYS_DATA_CONNECTION_UNACTIVATED};
template <>
constexpr std::optional<Bounds> kBounds<sys_service_status_e> =
    Bounds{SYS_SERVICE_NONE, SYS_SERVICE_AVAILABLE};
template <>
constexpr std::optional<Bounds> kBounds<sys_sim_status_e> =
    Bounds{SYS_SIM_NOT_FOUND, SYS_SIM_READY};
template <>
constexpr std::optional<Bounds> kBounds<sys_gps_status_e> = Bounds{SYS_GPS_OFF, SYS_GPS_GOT_FIX};

Query DataCallStatus() {
    return QueryOf("sys_getCellularDataConnectionStatus", SYS_SUCCESS,
                   sys_getCellularDataConnectionStatus, kBounds<sys_data_connection_status_e>);
}

std::vector<Query> Queries() {
    return {
#define SYSINT_QUERY(Type, name, Meaning, field, description) \
    QueryOf("sys_" #name, SYS_SUCCESS, sys_##name, kBounds<Meaning>),
        SYSINT_QUERIES(SYSINT_QUERY)
#undef SYSINT_QUERY
    };
}

/// The calls with the name of a field or an application as their parameter.
std::vector<Query> NamedQueries(const std::string& name) {
    return {
// NOLINTNEXTLINE(cppcoreguidelines-macro-usage): it needs the name as text and as a function
#define NAMED_QUERY(call, Subject, field, description) \
    NamedQueryOf("sys_" #call, SYS_SUCCESS, sys_##call, name),
        SYSINT_NAMED_QUERIES(NAMED_QUERY)
#undef NAMED_QUERY
    };
}

/// A group identifier of the SIM. Bytes after its length are not checked.
Query GroupIdentifier(std::uint8_t index) {
    struct Room {
        std::byte bytes[SYS_SIM_CARRIER_GID_SIZE];
    };
    const auto none = [](std::span<const std::byte>) { return Fields(); };
    return {"sys_getSIMCarrierGID",
            "index " + std::to_string(index),
            SYS_SUCCESS,
            {Result{sizeof(Room), none}, ResultOf<std::uint8_t>("length")},
            [index](auto results) {
                return sys_getSIMCarrierGID(static_cast<std::uint8_t*>(results[0]),
                                            static_cast<std::uint8_t*>(results[1]), index);
            }};
}

Query ManualNetworkSelection() {
    return {"sys_getModemMnsInfo",
            "",
            SYS_SUCCESS,
            {ResultOf<int>("allowed"), ResultOf<int>("selected"), ResultOf<int>("scanStatus")},
            [](auto results) {
                return sys_getModemMnsInfo(static_cast<int*>(results[0]),
                                           static_cast<int*>(results[1]),
                                           static_cast<int*>(results[2]));
            }};
}

Query NewRadioBand() {
    // Callers do not use the second number, so that it may stay unwritten.
    const auto none = [](std::span<const std::byte>) { return Fields(); };
    return {"sys_getCellular5GBand",
            "",
            SYS_SUCCESS,
            {ResultOf<int>("band"), Result{sizeof(int), none}},
            [](auto results) {
                return sys_getCellular5GBand(static_cast<int*>(results[0]),
                                             static_cast<int*>(results[1]));
            }};
}

Query GuestProfile(int profile) {
    return {"sys_getWiFiGuestProfileEnabled",
            "profile " + std::to_string(profile),
            SYS_SUCCESS,
            {ResultOf<int>()},
            [profile](auto results) {
                return sys_getWiFiGuestProfileEnabled(profile, static_cast<int*>(results[0]));
            }};
}

List ConnectedDevices() {
    List list;
    list.call = "sys_getConnectedDeviceList";
    list.success = SYS_SUCCESS;
    list.bufferNeeded = SYS_ERROR_BUFFER_NEEDED;
    list.tellsTooSmall = false;
    list.mayAskForNothing = false;
    list.recordSize = sizeof(sys_connected_device_t);
    list.fields = FieldsInBytes<sys_connected_device_t>;
    list.make = [](void* buffer, void* count) {
        return sys_getConnectedDeviceList(static_cast<sys_connected_device_t*>(buffer),
                                          static_cast<unsigned int*>(count));
    };
    return list;
}

void OpenSdk(Probe& probe) {
    const int code = probe.Code("sys_sdkInitialize", "", sys_sdkInitialize);
    if (code != SYS_SUCCESS) {
        probe.Told().Note("the SDK has not been opened; its calls are made all the same");
    }
}

/// Checks that the SDK can be opened again after it was closed.
void ExamineRounds(Probe& probe) {
    const auto query = [&] {
        int status = 0;
        return probe.Code("sys_getSIMStatus", "", [&] { return sys_getSIMStatus(&status); });
    };
    const int opened = probe.Code("sys_sdkInitialize", "", sys_sdkInitialize);
    const int first = query();
    (void)probe.Code("sys_sdkShutdown", "", sys_sdkShutdown);
    const int openedAgain = probe.Code("sys_sdkInitialize", "", sys_sdkInitialize);
    const int second = query();
    (void)probe.Code("sys_sdkShutdown", "", sys_sdkShutdown);
    if (opened == SYS_SUCCESS && openedAgain != SYS_SUCCESS) {
        probe.Told().Fail("sys_sdkInitialize", "the SDK can be opened once only");
    } else if (first == SYS_SUCCESS && second != SYS_SUCCESS) {
        probe.Told().Fail("sys_sdkInitialize", "calls of the second round fail");
    }
}

}  // namespace

void ExamineSysint(Probe& probe, const Options& options) {
    ExamineRounds(probe);
    // The SDK stays open, because the tests with threads and signals repeat the calls.
    OpenSdk(probe);
    for (const Query& query : Queries()) {
        Examine(probe, query);
    }
    for (const std::string& name : options.names) {
        for (const Query& query : NamedQueries(name)) {
            Examine(probe, query);
        }
    }
    for (const std::uint8_t index : std::initializer_list<std::uint8_t>{0, 1, 255}) {
        Examine(probe, GroupIdentifier(index));
    }
    Examine(probe, ManualNetworkSelection());
    Examine(probe, NewRadioBand());
    for (const int profile : {int{SYS_WIFI_GUEST_2_4_GHZ}, int{SYS_WIFI_GUEST_5_GHZ}}) {
        Examine(probe, GuestProfile(profile));
    }
    (void)Examine(probe, ConnectedDevices());
}

void ExamineActions(Probe& probe, const Options& options) {
    constexpr int kReserved = 0;
    if (!options.actions) {
        probe.Skip("sys_cellularDataDisconnect", "--actions asks for it");
        probe.Skip("sys_cellularDataConnect", "--actions asks for it");
        return;
    }
    (void)probe.Code("sys_cellularDataDisconnect", "0",
                     [] { return sys_cellularDataDisconnect(kReserved); });
    Examine(probe, DataCallStatus());
    (void)probe.Code("sys_cellularDataConnect", "0",
                     [] { return sys_cellularDataConnect(kReserved); });
    Examine(probe, DataCallStatus());
}

}  // namespace conformance
