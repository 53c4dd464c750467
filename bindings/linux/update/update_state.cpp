#include "bindings/linux/update/update_state.h"

#include <iterator>

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

}  // namespace binding
