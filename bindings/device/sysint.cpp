// Queries of the system-interface SDK.
#include "platform/sysint.h"

#include <algorithm>

#include "bindings/device/calls.h"

using binding::Answer;
using binding::DeliverNamed;
using binding::Device;
using binding::FailureOf;
using binding::WithDevice;

namespace {

constexpr int kCodeBase = 0;

template <typename T>
int Deliver(const Answer<T>& answer, T* value) {
    const int failure = FailureOf(answer, kCodeBase);
    if (failure == SYS_SUCCESS) {
        *value = answer.value;
    }
    return failure;
}

}  // namespace

int sys_sdkInitialize() {
    const int failure = binding::Guarded(kCodeBase, [] {
        binding::BeginSession();
        return static_cast<int>(SYS_SUCCESS);
    });
    if (failure != SYS_SUCCESS) {
        return failure;
    }
    return WithDevice(
        kCodeBase, [](const Device& device) { return FailureOf(device.sdkInitialize, kCodeBase); });
}

int sys_sdkShutdown() {
    return binding::Guarded(kCodeBase, [] {
        binding::EndSession();
        return static_cast<int>(SYS_SUCCESS);
    });
}

#define DEVICE_QUERY(Type, name, Meaning, field, description)                                 \
    int sys_##name(decltype(Device::name.value)* value) {                                     \
        return WithDevice(kCodeBase,                                                          \
                          [&](const Device& device) { return Deliver(device.name, value); }); \
    }
SYSINT_QUERIES(DEVICE_QUERY)
#undef DEVICE_QUERY

#define DEVICE_NAMED_QUERY(call, Subject, field, description)                          \
    int sys_##call(const char* name, int* value) {                                     \
        return WithDevice(kCodeBase, [&](const Device& device) {                       \
            return DeliverNamed(device.call, name, kCodeBase,                          \
                                [&](const auto& one) { return Deliver(one, value); }); \
        });                                                                            \
    }
SYSINT_NAMED_QUERIES(DEVICE_NAMED_QUERY)
#undef DEVICE_NAMED_QUERY

int sys_getSIMCarrierGID(std::uint8_t* gid, std::uint8_t* length, std::uint8_t index) {
    return WithDevice(kCodeBase, [&](const Device& device) {
        const int failure = FailureOf(device.getSIMCarrierGID, index, kCodeBase);
        if (failure == SYS_SUCCESS) {
            const auto& answer = device.getSIMCarrierGID.At(index);
            std::copy_n(answer.value.bytes.begin(), answer.value.length, gid);
            *length = answer.value.length;
        }
        return failure;
    });
}

int sys_getModemMnsInfo(int* allowed, int* selected, int* scanStatus) {
    return WithDevice(kCodeBase, [&](const Device& device) {
        const auto& answer = device.getModemMnsInfo;
        const int failure = FailureOf(answer, kCodeBase);
        if (failure == SYS_SUCCESS) {
            *allowed = answer.value.allowed;
            *selected = answer.value.selected;
            *scanStatus = answer.value.scanStatus;
        }
        return failure;
    });
}

int sys_getCellular5GBand(int* band, int* second) {
    return WithDevice(kCodeBase, [&](const Device& device) {
        const auto& answer = device.getCellular5GBand;
        const int failure = FailureOf(answer, kCodeBase);
        if (failure == SYS_SUCCESS) {
            *band = answer.value.band;
            *second = answer.value.second;
        }
        return failure;
    });
}

int sys_getConnectedDeviceList(sys_connected_device_t* devices, unsigned int* count) {
    return WithDevice(kCodeBase, [&](const Device& device) {
        const auto& answer = device.getConnectedDeviceList;
        const int failure = FailureOf(answer, kCodeBase);
        if (failure != SYS_SUCCESS) {
            return failure;
        }
        const unsigned int room = devices == nullptr ? 0 : *count;
        *count = static_cast<unsigned int>(answer.value.size());
        if (room < answer.value.size()) {
            return static_cast<int>(SYS_ERROR_BUFFER_NEEDED);
        }
        std::copy(answer.value.begin(), answer.value.end(), devices);
        return static_cast<int>(SYS_SUCCESS);
    });
}

int sys_getWiFiGuestProfileEnabled(int profile, int* enabled) {
    return WithDevice(kCodeBase, [&](const Device& device) {
        if (profile != SYS_WIFI_GUEST_2_4_GHZ && profile != SYS_WIFI_GUEST_5_GHZ) {
            return static_cast<int>(binding::kNotAnswered);
        }
        const int failure = FailureOf(device.getWiFiGuestProfileEnabled, profile, kCodeBase);
        if (failure == SYS_SUCCESS) {
            *enabled = device.getWiFiGuestProfileEnabled.At(profile).value;
        }
        return failure;
    });
}
