// The device documents that come with the project.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "tests/unit/bindings/document/document_reading.h"

namespace {

using binding::Device;

std::string TextOf(const std::filesystem::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

Device Shipped(const std::string& name) {
    return Read(TextOf(std::filesystem::path(KESTAL_SHIPPED_DEVICES) / (name + ".json")));
}

/// The code of each call: 0 when it works, -1 when the document does not name it.
std::vector<int> Codes(const Device& device) {
    std::vector<int> codes;
    const auto add = [&codes](const auto& answer) {
        codes.push_back(answer.named ? answer.error : -1);
    };
#define ADD_CODE(Type, name, Meaning, field, description) add(device.name);
    SYSINT_QUERIES(ADD_CODE)
#undef ADD_CODE
    add(device.getModemMnsInfo);
    add(device.getCellular5GBand);
    add(device.getConnectedDeviceList);
    add(device.getSIMCarrierGID.At(1));
    add(device.getWiFiGuestProfileEnabled.At(SYS_WIFI_GUEST_2_4_GHZ));
    add(device.getWiFiGuestProfileEnabled.At(SYS_WIFI_GUEST_5_GHZ));
#define ADD_CODES(name, Subject, field, description) add(device.name);
    SYSINT_NAMED_QUERIES(ADD_CODES)
#undef ADD_CODES
    add(device.commonFeatures);
    add(device.appFeatures);
    add(device.commonConfigurations);
    add(device.appConfigurations);
    add(device.uriData);
    add(device.externalUriData);
    add(device.i18nSettings);
    add(device.softwareUpdateStatus);
    add(device.softwareInstallationDuration);
    add(device.softwareUpdateCustomMsgs);
    add(device.channels.at("zelt.ans.notifications"));
    return codes;
}

TEST(ShippedDevices, EachDocumentIsValidAndNamesEveryCall) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(KESTAL_SHIPPED_DEVICES)) {
        SCOPED_TRACE(entry.path());
        names.insert(entry.path().filename());
        const std::string text = TextOf(entry.path());
        ASSERT_EQ(Complaint(text), "");
        const std::vector<int> codes = Codes(Read(text));
        EXPECT_EQ(std::count(codes.begin(), codes.end(), -1), 0);
    }
    EXPECT_EQ(names, (std::set<std::string>{
                         "3g-old-sim.json",
                         "airplane-mode.json",
                         "all-notifications.json",
                         "default.json",
                         "dual-sim-empty-slot.json",
                         "dual-sim-slot-2.json",
                         "every-group-failing.json",
                         "everything-failing.json",
                         "gpio-named.json",
                         "gpio-unnamed.json",
                         "lte-plus-one-sim.json",
                         "no-service.json",
                         "no-sim.json",
                         "out-of-credit.json",
                         "pin-locked.json",
                         "puk-locked.json",
                         "roaming.json",
                         "software-update-10.json",
                         "software-update-4.json",
                         "software-update-5.json",
                         "software-update-6.json",
                         "software-update-8.json",
                         "software-update-9-2.json",
                     }));
}

TEST(ShippedDevices, EveryCallFailsWithACodeOfItsOwnExceptTheSwitchOfTheWebUi) {
    const Device device = Shipped("everything-failing");
    EXPECT_EQ(device.getWebUICarrierEnabled.value, 1);
    std::vector<int> codes = Codes(device);
    codes.insert(codes.end(), {device.sdkInitialize.error, device.cellularDataConnect.error,
                               device.cellularDataDisconnect.error});
    EXPECT_EQ(std::count(codes.begin(), codes.end(), 0), 1);
    const std::set<int> different(codes.begin(), codes.end());
    // Both guest profiles fail with the same code.
    EXPECT_EQ(different.size(), codes.size() - 1);
}

}  // namespace
