// Queries of the system-interface SDK.
#include "platform/sysint.h"

#include <algorithm>
#include <chrono>
#include <span>

#include "bindings/device/calls.h"
#include "bindings/device/seen_call.h"

using binding::Answer;
using binding::BytesOf;
using binding::DeliverNamed;
using binding::Device;
using binding::FailureOf;
using binding::NoAnswer;
using binding::Seen;
using binding::Watched;
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
    // Taken even if nobody watches, because it is the beginning of the session that finds watchers.
    const auto begin = std::chrono::steady_clock::now();
    int code = binding::Guarded(kCodeBase, [] {
        binding::BeginSession();
        return static_cast<int>(SYS_SUCCESS);
    });
    if (code == SYS_SUCCESS) {
        code = WithDevice(kCodeBase, [](const Device& device) {
            return FailureOf(device.sdkInitialize, kCodeBase);
        });
    }
    return Seen("sys_sdkInitialize", {}, begin, code, SYS_SUCCESS, NoAnswer);
}

int sys_sdkShutdown() {
    return Watched(
        "sys_sdkShutdown", {}, SYS_SUCCESS,
        [] {
            return binding::Guarded(kCodeBase, [] {
                binding::EndSession();
                return static_cast<int>(SYS_SUCCESS);
            });
        },
        NoAnswer);
}

#define DEVICE_QUERY(Type, name, Meaning, field, description)                                \
    int sys_##name(decltype(Device::name.value)* value) {                                    \
        const auto call = [&](const Device& device) { return Deliver(device.name, value); }; \
        return Watched(                                                                      \
            "sys_" #name, {}, SYS_SUCCESS, [&] { return WithDevice(kCodeBase, call); },      \
            [&] { return BytesOf(*value); });                                                \
    }
SYSINT_QUERIES(DEVICE_QUERY)
#undef DEVICE_QUERY

#define DEVICE_NAMED_QUERY(call, Subject, field, description)                                \
    int sys_##call(const char* name, int* value) {                                           \
        const auto deliver = [&](const Device& device) {                                     \
            return DeliverNamed(device.call, name, kCodeBase,                                \
                                [&](const auto& one) { return Deliver(one, value); });       \
        };                                                                                   \
        return Watched(                                                                      \
            "sys_" #call, name, SYS_SUCCESS, [&] { return WithDevice(kCodeBase, deliver); }, \
            [&] { return BytesOf(*value); });                                                \
    }
SYSINT_NAMED_QUERIES(DEVICE_NAMED_QUERY)
#undef DEVICE_NAMED_QUERY

int sys_getSIMCarrierGID(std::uint8_t* gid, std::uint8_t* length, std::uint8_t index) {
    const auto call = [&](const Device& device) {
        const int failure = FailureOf(device.getSIMCarrierGID, index, kCodeBase);
        if (failure == SYS_SUCCESS) {
            const auto& answer = device.getSIMCarrierGID.At(index);
            std::copy_n(answer.value.bytes.begin(), answer.value.length, gid);
            *length = answer.value.length;
        }
        return failure;
    };
    return Watched(
        "sys_getSIMCarrierGID", int{index}, SYS_SUCCESS,
        [&] { return WithDevice(kCodeBase, call); },
        [&] { return std::as_bytes(std::span(gid, *length)); });
}

int sys_getModemMnsInfo(int* allowed, int* selected, int* scanStatus) {
    binding::MnsInfo info;
    const auto call = [&](const Device& device) {
        const auto& answer = device.getModemMnsInfo;
        const int failure = FailureOf(answer, kCodeBase);
        if (failure == SYS_SUCCESS) {
            info = answer.value;
            *allowed = info.allowed;
            *selected = info.selected;
            *scanStatus = info.scanStatus;
        }
        return failure;
    };
    return Watched(
        "sys_getModemMnsInfo", {}, SYS_SUCCESS, [&] { return WithDevice(kCodeBase, call); },
        [&] { return BytesOf(info); });
}

int sys_getCellular5GBand(int* band, int* second) {
    binding::Bands bands;
    const auto call = [&](const Device& device) {
        const auto& answer = device.getCellular5GBand;
        const int failure = FailureOf(answer, kCodeBase);
        if (failure == SYS_SUCCESS) {
            bands = answer.value;
            *band = bands.band;
            *second = bands.second;
        }
        return failure;
    };
    return Watched(
        "sys_getCellular5GBand", {}, SYS_SUCCESS, [&] { return WithDevice(kCodeBase, call); },
        [&] { return BytesOf(bands); });
}

int sys_getConnectedDeviceList(sys_connected_device_t* devices, unsigned int* count) {
    const auto call = [&](const Device& device) {
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
    };
    return Watched(
        "sys_getConnectedDeviceList", {}, SYS_SUCCESS, [&] { return WithDevice(kCodeBase, call); },
        [&] { return std::as_bytes(std::span(devices, *count)); });
}

int sys_getWiFiGuestProfileEnabled(int profile, int* enabled) {
    const auto call = [&](const Device& device) {
        if (profile != SYS_WIFI_GUEST_2_4_GHZ && profile != SYS_WIFI_GUEST_5_GHZ) {
            return static_cast<int>(binding::kNotAnswered);
        }
        const int failure = FailureOf(device.getWiFiGuestProfileEnabled, profile, kCodeBase);
        if (failure == SYS_SUCCESS) {
            *enabled = device.getWiFiGuestProfileEnabled.At(profile).value;
        }
        return failure;
    };
    return Watched(
        "sys_getWiFiGuestProfileEnabled", profile, SYS_SUCCESS,
        [&] { return WithDevice(kCodeBase, call); }, [&] { return BytesOf(*enabled); });
}
