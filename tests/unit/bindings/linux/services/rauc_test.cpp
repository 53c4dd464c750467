// Updates as RAUC describes them.
#include "bindings/linux/update/rauc.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace {

using binding::InstallStatus;
using binding::UpdateStatus;
using nlohmann::json;

json Installer(const std::string& operation, const std::string& problem, int percent = 0) {
    return {{"Operation", operation},
            {"LastError", problem},
            {"Progress", json::array({percent, "Installing", 1})}};
}

TEST(Rauc, WithoutAnUpdateIsInNoState) {
    const auto state = binding::NextRaucState({}, Installer("idle", ""));
    EXPECT_EQ(binding::UpdateRecord(state).status, 0);
    EXPECT_EQ(binding::InstallStatusOf(state), InstallStatus::none);
}

TEST(Rauc, InstallsUntilTheUpdateIsInstalled) {
    auto state = binding::NextRaucState({}, Installer("installing", "", 40));
    EXPECT_EQ(binding::UpdateRecord(state).status, 7);
    EXPECT_EQ(binding::UpdateRecord(state).value, 40);
    EXPECT_EQ(binding::InstallStatusOf(state), InstallStatus::installing);
    state = binding::NextRaucState(state, Installer("idle", "", 100));
    EXPECT_EQ(binding::UpdateRecord(state).status, 8);
    EXPECT_EQ(binding::InstallStatusOf(state), InstallStatus::installed);
    state = binding::NextRaucState(state, Installer("idle", "", 100));
    EXPECT_EQ(state.status, UpdateStatus::installed);
}

TEST(Rauc, TellsThatTheLastInstallationFailed) {
    const auto state = binding::NextRaucState({}, Installer("idle", "signature is invalid\xff"));
    EXPECT_EQ(binding::UpdateRecord(state).status, 9);
    EXPECT_EQ(binding::UpdateRecord(state).value, 2);
    EXPECT_EQ(binding::InstallStatusOf(state), InstallStatus::failed);
    EXPECT_EQ(state.problem, "signature is invalid?");
    EXPECT_EQ(binding::NextRaucState(state, Installer("installing", "")).status,
              UpdateStatus::installing);
}

TEST(Rauc, ThatEndsWhileItInstallsHasFailedUntilTheNextInstallation) {
    const auto installing = binding::NextRaucState({}, Installer("installing", "", 40));
    auto state = binding::RaucStateAfterItsEnd(installing);
    EXPECT_EQ(state.status, UpdateStatus::failed);
    EXPECT_EQ(state.problem, "RAUC has ended during the installation");
    // One that has just started knows nothing of it.
    state = binding::NextRaucState(state, Installer("idle", ""));
    EXPECT_EQ(state.status, UpdateStatus::failed);
    EXPECT_EQ(state.problem, "RAUC has ended during the installation");
    state = binding::NextRaucState(state, Installer("installing", ""));
    EXPECT_EQ(state.status, UpdateStatus::installing);
    EXPECT_EQ(state.problem, "");
}

TEST(Rauc, ThatEndsAfterAnInstallationLeavesItsResult) {
    const auto installing = binding::NextRaucState({}, Installer("installing", ""));
    const auto installed = binding::NextRaucState(installing, Installer("idle", ""));
    EXPECT_EQ(binding::RaucStateAfterItsEnd(installed), installed);
    EXPECT_EQ(binding::RaucStateAfterItsEnd({}), binding::UpdateState());
}

TEST(Rauc, WhoseValuesHaveOtherTypesIsInNoState) {
    for (const json& installer :
         {json(), json::array(), json({{"Operation", 7}, {"LastError", nullptr}})}) {
        EXPECT_EQ(binding::NextRaucState({}, installer).status, UpdateStatus::none) << installer;
    }
    for (const json& progress : {json(), json::array(), json::array({"40"}), json::array({-4})}) {
        const json installer = {{"Operation", "installing"}, {"Progress", progress}};
        EXPECT_EQ(binding::NextRaucState({}, installer).percent, 0) << installer;
    }
}

TEST(Rauc, TellsTheVersionOfTheSlotThatWasInstalledLast) {
    const auto slot = [](const std::string& name, const std::string& time,
                         const std::string& version) {
        return json::array(
            {name, {{"installed.timestamp", time}, {"bundle.version", version}, {"size", 7}}});
    };
    const json slots = json::array({slot("rootfs.0", "2026-11-22T15:04:31Z", "2.1"),
                                    slot("rootfs.1", "2026-10-01T08:00:00Z", "2.0")});
    EXPECT_EQ(binding::LastInstalledVersion(slots), "2.1");
    const json others = json::array({json::array({"rootfs.0", json::object()}), 7, json()});
    EXPECT_EQ(binding::LastInstalledVersion(others), "");
    EXPECT_EQ(binding::LastInstalledVersion("none"), "");
}

TEST(Rauc, KeepsTheVersionWhileTheUpdateIsInstalled) {
    binding::UpdateState installed;
    installed.status = UpdateStatus::installed;
    installed.version = "2.1";
    EXPECT_EQ(binding::NextRaucState(installed, Installer("idle", "")).version, "2.1");
    EXPECT_EQ(binding::NextRaucState(installed, Installer("installing", "")).version, "");
}

TEST(UpdateRecord, HasRoomForLongVersionsOnlyInPart) {
    binding::UpdateState state;
    state.version = std::string(1000, 'v');
    EXPECT_EQ(std::string(binding::UpdateRecord(state).version), std::string(255, 'v'));
}

TEST(UpdateRecord, OneWithoutAnUpdateLeavesThatOfAnotherDaemon) {
    binding::UpdateState installing;
    installing.status = UpdateStatus::installing;
    binding::Device device;
    binding::FillUpdate(device, installing);
    binding::FillUpdate(device, binding::UpdateState());
    EXPECT_EQ(device.softwareUpdateStatus.value.status, 7);
    EXPECT_EQ(device.getFotaInstallStatus.value, 1);
}

TEST(UpdateRecord, OneWithoutAnUpdateHealsTheCallsOfALostDaemon) {
    binding::Device device;
    binding::FailUpdate(device, 5);
    binding::FillUpdate(device, binding::UpdateState());
    EXPECT_EQ(device.softwareUpdateStatus.error, 0);
}

}  // namespace
