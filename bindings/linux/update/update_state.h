// What a software update is doing, and the numbers by which the product publishes it.
#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "bindings/device/device.h"
#include "platform/webui.h"

namespace binding {

/// Values of webui_software_update_status_t::status on a Linux board. The page shows texts about
/// the update in states 8 and 9.
enum class UpdateStatus : std::int32_t {
    none = 0,
    downloading = 4,
    installing = 7,
    installed = 8,
    failed = 9,
};

/// Values of sys_getFotaInstallStatus on a Linux board.
enum class InstallStatus : std::int32_t {
    none = 0,
    installing = 1,
    /// Installed; the device uses it when it has started again.
    installed = 2,
    failed = 3,
};

struct UpdateState {
    UpdateStatus status = UpdateStatus::none;
    std::int32_t percent = 0;  ///< of the download or the installation
    std::string version;       ///< empty when unknown
    std::string problem;       ///< why it failed; empty when unknown
    bool userInitiated = false;

    bool operator==(const UpdateState&) const = default;
};

/// The record that webui_get_software_update_status answers. Its value is the percentage, and in a
/// failure 2: the page tells of the failure then.
webui_software_update_status_t UpdateRecord(const UpdateState& state);

InstallStatus InstallStatusOf(const UpdateState& state);

/// Writes into @p device what its calls about updates answer, or that they fail with @p code.
void FillUpdate(Device& device, const UpdateState& state);
void FailUpdate(Device& device, int code);

/// The state, for people.
nlohmann::json DescribeUpdate(const UpdateState& state);

}  // namespace binding
