#include <algorithm>
#include <cstddef>
#include <span>
#include <string>

#include "components/status/status_component.h"
#include "framework/log.h"
#include "framework/nothrow_array.h"
#include "platform/sysint.h"

namespace {

struct ClientCounts {
    unsigned int wired = 0;
    unsigned int guest = 0;
    /// Everything but guests, wired devices included.
    unsigned int primary = 0;
};

ClientCounts CountClients(std::span<const sys_connected_device_t> devices) {
    ClientCounts counts;
    for (const sys_connected_device_t& device : devices) {
        if (device.connectionKind == SYS_CONNECTION_GUEST_WIFI) {
            ++counts.guest;
            continue;
        }
        ++counts.primary;
        if (device.connectionKind == SYS_CONNECTION_WIRED_A ||
            device.connectionKind == SYS_CONNECTION_WIRED_B) {
            ++counts.wired;
        }
    }
    return counts;
}

void WriteClientCounts(CTPP::CDT& statusData, unsigned int all, unsigned int wifi,
                       const ClientCounts& counts) {
    statusData["statusBarClientListSize"] = std::to_string(all);
    statusData["statusBarWiFiClientListSize"] = std::to_string(wifi);
    statusData["statusBarGuestClientListSize"] = std::to_string(counts.guest);
    statusData["statusBarPrimaryClientListSize"] = std::to_string(counts.primary);
}

}  // namespace

void StatusComponent::GetRouterStatus(CTPP::CDT& statusData) {
    KESTAL_SIGNATURE("void StatusComponent::GetRouterStatus(CTPP::CDT&)");
    KESTAL_BEGIN();
    unsigned int count = 0;
    const int sizeResult = sys_getConnectedDeviceList(nullptr, &count);
    if (sizeResult == SYS_SUCCESS) {
        WriteClientCounts(statusData, 0, 0, {});
    } else if (sizeResult == SYS_ERROR_BUFFER_NEEDED && count != 0) {
        const std::size_t room = count;
        const auto devices = NothrowArray<sys_connected_device_t>(count);
        if (devices != nullptr) {
            const int result = sys_getConnectedDeviceList(devices.get(), &count);
            if (result == SYS_SUCCESS) {
                // The count may have changed, because clients come and go between the two calls.
                const std::size_t delivered = std::min<std::size_t>(count, room);
                const ClientCounts counts = CountClients({devices.get(), delivered});
                const bool countWired = ConfigurationNumber("ShowWifiEthernetUSBTotalClients") == 1;
                WriteClientCounts(statusData, count,
                                  countWired ? counts.primary : counts.primary - counts.wired,
                                  counts);
            } else {
                KESTAL_FAILURE(
                    "sys_getConnectedDeviceList failed, returned error code [%d]. Try sysintcli "
                    "getConnectedDeviceList from command line.",
                    result);
            }
        }
    }
    KESTAL_END();
}
