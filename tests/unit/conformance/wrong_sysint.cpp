// Faults of the system-interface SDK.
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <thread>

#include "platform/sysint.h"
#include "tests/unit/conformance/wrong_binding.h"

using wrong::Has;

extern "C" {

int RealInitialize() REAL("sys_sdkInitialize");
int WrongInitialize() WRAPPED("sys_sdkInitialize");
int WrongInitialize() {
    static int rounds = 0;
    ++rounds;
    return Has("one-round-only") && rounds > 1 ? 9 : RealInitialize();
}

int RealGps(int* status) REAL("sys_getGPSStatus");
int WrongGps(int* status) WRAPPED("sys_getGPSStatus");
int WrongGps(int* status) {
    if (Has("result-too-long")) {
        status[1] = 1;
    }
    return RealGps(status);
}

int RealSmsCount(int* count) REAL("sys_getSMSUnreadCount");
int WrongSmsCount(int* count) WRAPPED("sys_getSMSUnreadCount");
int WrongSmsCount(int* count) {
    if (Has("before-result")) {
        count[-1] = 1;
    }
    return RealSmsCount(count);
}

int RealSims(int* count) REAL("sys_getNumSims");
int WrongSims(int* count) WRAPPED("sys_getNumSims");
int WrongSims(int* count) {
    return Has("success-without-result") ? int{SYS_SUCCESS} : RealSims(count);
}

int RealSlot(int* slot) REAL("sys_getActiveSimSlot");
int WrongSlot(int* slot) WRAPPED("sys_getActiveSimSlot");
int WrongSlot(int* slot) {
    const int code = RealSlot(slot);
    return Has("failure-with-result") ? 5 : code;
}

int RealBattery(sys_battery_status_t* status) REAL("sys_getBatteryStatus");
int WrongBattery(sys_battery_status_t* status) WRAPPED("sys_getBatteryStatus");
int WrongBattery(sys_battery_status_t* status) {
    const std::int32_t detection = status->detection;
    const int code = RealBattery(status);
    if (Has("field-left-out")) {
        status->detection = detection;
    }
    return code;
}

int RealService(sys_cellular_service_stats_t* stats) REAL("sys_getCellularServiceStats");
int WrongService(sys_cellular_service_stats_t* stats) WRAPPED("sys_getCellularServiceStats");
int WrongService(sys_cellular_service_stats_t* stats) {
    const int code = RealService(stats);
    if (Has("live-values")) {
        stats->signalBars += static_cast<int>(wrong::Flicker());
    }
    if (Has("text-not-terminated")) {
        std::memset(stats->networkName, 'x', sizeof(stats->networkName));
    }
    return code;
}

int RealSimStatus(int* status) REAL("sys_getSIMStatus");
int WrongSimStatus(int* status) WRAPPED("sys_getSIMStatus");
int WrongSimStatus(int* status) {
    const int code = RealSimStatus(status);
    if (Has("unknown-enumerator")) {
        *status = 42;
    }
    return code;
}

int RealSlots(sys_all_sim_slots_t* slots) REAL("sys_getAllSimSlotsInfo");
int WrongSlots(sys_all_sim_slots_t* slots) WRAPPED("sys_getAllSimSlotsInfo");
int WrongSlots(sys_all_sim_slots_t* slots) {
    const int code = RealSlots(slots);
    if (Has("too-many-slots")) {
        slots->count = 3;
    }
    return code;
}

int RealGid(std::uint8_t* gid, std::uint8_t* length, std::uint8_t index)
    REAL("sys_getSIMCarrierGID");
int WrongGid(std::uint8_t* gid, std::uint8_t* length, std::uint8_t index)
    WRAPPED("sys_getSIMCarrierGID");
int WrongGid(std::uint8_t* gid, std::uint8_t* length, std::uint8_t index) {
    if (Has("identifier-too-long")) {
        gid[SYS_SIM_CARRIER_GID_SIZE] = 0;
    }
    std::uint8_t unused = 0;
    return RealGid(gid, Has("identifier-without-length") ? &unused : length, index);
}

int RealBand(int* band) REAL("sys_getCellularBand");
int WrongBand(int* band) WRAPPED("sys_getCellularBand");
int WrongBand(int* band) {
    while (Has("hang")) {
        (void)pause();
    }
    return RealBand(band);
}

/// Calls itself until the stack is used up.
// NOLINTNEXTLINE(misc-no-recursion): the recursion is the fault
int OverflowStack(unsigned int depth) {
    volatile char frame[1024] = {};
    frame[depth % sizeof(frame)] = 1;
    return depth == 0 ? 0 : OverflowStack(depth + 1) + frame[0];
}

void EndProcess() {
    if (Has("crash")) {
        (void)std::raise(SIGSEGV);
    }
    if (Has("stack-overflow") || (Has("stack-overflow-in-thread") && gettid() != getpid())) {
        (void)OverflowStack(1);
    }
    if (Has("exits")) {
        std::exit(0);
    }
    if (Has("exits-quickly")) {
        std::quick_exit(0);
    }
    if (Has("broken-pipe")) {
        int ends[2] = {};
        (void)pipe(ends);
        (void)close(ends[0]);
        (void)write(ends[1], "", 1);
    }
}

int RealBandwidth(int* bandwidth) REAL("sys_getCABandWidth");
int WrongBandwidth(int* bandwidth) WRAPPED("sys_getCABandWidth");
int WrongBandwidth(int* bandwidth) {
    EndProcess();
    return RealBandwidth(bandwidth);
}

int RealServiceStatus(int* status) REAL("sys_getCellularServiceStatus");
int WrongServiceStatus(int* status) WRAPPED("sys_getCellularServiceStatus");
int WrongServiceStatus(int* status) {
    static std::atomic<int> inside = 0;
    static std::atomic<int> meetings = 0;
    if (!Has("not-for-threads") && !Has("values-not-for-threads")) {
        return RealServiceStatus(status);
    }
    // Waits until another thread has entered, so that two threads are in here at the same time.
    const int before = meetings;
    bool met = ++inside > 1;
    meetings += met ? 1 : 0;
    for (int waited = 0; !met && waited < 20; ++waited) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        met = meetings != before;
    }
    const int code = RealServiceStatus(status);
    --inside;
    if (met && Has("values-not-for-threads")) {
        *status = SYS_SERVICE_NONE;
        return code;
    }
    return met ? 11 : code;
}

int RealWifi(int* enabled) REAL("sys_getWiFiEnabled");
int WrongWifi(int* enabled) WRAPPED("sys_getWiFiEnabled");
int WrongWifi(int* enabled) {
    const timespec moment{0, 1'000'000};
    if (Has("interrupted") && nanosleep(&moment, nullptr) != 0) {
        return EINTR;
    }
    return RealWifi(enabled);
}

int RealGuest(int profile, int* enabled) REAL("sys_getWiFiGuestProfileEnabled");
int WrongGuest(int profile, int* enabled) WRAPPED("sys_getWiFiGuestProfileEnabled");
int WrongGuest(int profile, int* enabled) {
    if (Has("takes-declared-profiles") && profile != SYS_WIFI_GUEST_2_4_GHZ &&
        profile != SYS_WIFI_GUEST_5_GHZ) {
        std::abort();
    }
    return RealGuest(profile, enabled);
}

int RealDevices(sys_connected_device_t* devices, unsigned int* count)
    REAL("sys_getConnectedDeviceList");
int WrongDevices(sys_connected_device_t* devices, unsigned int* count)
    WRAPPED("sys_getConnectedDeviceList");
int WrongDevices(sys_connected_device_t* devices, unsigned int* count) {
    static std::atomic<unsigned int> calls = 0;
    unsigned int needed = 0;
    const int asked = RealDevices(nullptr, &needed);
    // One more device is there during the third call and then during every 25th.
    const bool isOneMore = Has("device-comes-and-goes") && ++calls % 25 == 3;
    if (isOneMore && (devices == nullptr || *count <= needed)) {
        *count = needed + 1;
        return SYS_ERROR_BUFFER_NEEDED;
    }
    if (Has("asks-for-no-devices")) {
        *count = 0;
        return devices == nullptr ? SYS_ERROR_BUFFER_NEEDED : SYS_SUCCESS;
    }
    if (Has("list-without-count") && devices == nullptr && *count > 0) {
        return asked;
    }
    if (devices != nullptr && *count < needed) {
        if (Has("list-beyond-room")) {
            *count = needed;
        } else if (Has("list-cut-off")) {
            return SYS_SUCCESS;
        }
    }
    const int code = RealDevices(devices, count);
    if (isOneMore) {
        devices[*count] = devices[0];
        ++*count;
    }
    return code;
}
}
