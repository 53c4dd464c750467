#include "bindings/linux/update/update_state.h"

#include <iterator>
#include <nlohmann/json.hpp>

#include "bindings/linux/source.h"

namespace binding {

webui_software_update_status_t UpdateRecord(const UpdateState& state) {
    constexpr std::int32_t kInstallationFailed = 2;
    webui_software_update_status_t record{};
    record.status = static_cast<std::int32_t>(state.status);
    record.userInitiated = state.userInitiated ? 1 : 0;
    record.value = state.status == UpdateStatus::failed ? kInstallationFailed : state.percent;
    state.version.copy(record.version, std::size(record.version) - 1);
    return record;
}

InstallStatus InstallStatusOf(const UpdateState& state) {
    switch (state.status) {
        case UpdateStatus::installing:
            return InstallStatus::installing;
        case UpdateStatus::installed:
            return InstallStatus::installed;
        case UpdateStatus::failed:
            return InstallStatus::failed;
        case UpdateStatus::none:
        case UpdateStatus::downloading:
            break;
    }
    return InstallStatus::none;
}

void FillUpdate(Device& device, const UpdateState& state) {
    const auto& told = device.softwareUpdateStatus;
    const bool hasOther =
        told.error == 0 && told.value.status != static_cast<std::int32_t>(UpdateStatus::none);
    if (state.status == UpdateStatus::none && hasOther) {
        // A board may have two daemons for updates; one of them knows of this one.
        return;
    }
    Tell(device.softwareUpdateStatus, UpdateRecord(state));
    Tell(device.getFotaInstallStatus, InstallStatusOf(state));
}

void FailUpdate(Device& device, int code) {
    FailAll(code, device.softwareUpdateStatus, device.getFotaInstallStatus);
}

nlohmann::json DescribeUpdate(const UpdateState& state) {
    return {{"status", static_cast<int>(state.status)},
            {"percent", state.percent},
            {"version", state.version},
            {"problem", state.problem}};
}

}  // namespace binding
