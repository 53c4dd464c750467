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

TEST(UpdateRecord, HasRoomForLongVersionsOnlyInPart) {
    binding::UpdateState state;
    state.version = std::string(1000, 'v');
    EXPECT_EQ(std::string(binding::UpdateRecord(state).version), std::string(255, 'v'));
}

}  // namespace
