// Changes of the document are noticed, and a damaged document never replaces a good one.
#include "bindings/simulator/device_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <fstream>

#include "bindings/device/snapshot.h"
#include "platform/sysint.h"
#include "tests/support/sim_status.h"

namespace {

using ::testing::ElementsAre;

class DeviceFile : public DeviceWithSimStatus {};

TEST_F(DeviceFile, IsReadAgainOnlyWhenTheFileHasChanged) {
    SimStatus(1);
    const auto first = binding::CurrentDevice();
    EXPECT_EQ(binding::CurrentDevice(), first);
    SimStatus(1);
    EXPECT_NE(binding::CurrentDevice(), first);
}

TEST_F(DeviceFile, NoticesAChangeInPlaceOfTheSameSizeAtTheSameTime) {
    for (int status = 0; status < 10; ++status) {
        std::ofstream(device) << "{\"sys\": {\"getSIMStatus\": " << status << "}}";
        const std::array<timespec, 2> times{};
        ASSERT_EQ(utimensat(AT_FDCWD, device.c_str(), times.data(), 0), 0);
        EXPECT_EQ(SimStatus(), status);
    }
}

TEST_F(DeviceFile, LastGoodOneStaysWhenTheDocumentIsDamaged) {
    SimStatus(1);
    EXPECT_EQ(SimStatus(), 1);
    Document("{\n\"sys\": {\"getNumSims\": \"x\"}}");
    EXPECT_EQ(SimStatus(), 1);
    EXPECT_EQ(sys_sdkInitialize(), 0);
    EXPECT_EQ(SimStatus(), 1);
    EXPECT_THAT(Log(), ElementsAre("[SIMULATOR]:[ERROR] - " + device.string() +
                                   ":2: sys.getNumSims: expected a 32-bit integer or "
                                   "{\"error\": N}, found a text (keeping the last good device)"));
}

TEST_F(DeviceFile, EachDamagedStateIsLoggedOnce) {
    SimStatus(1);
    EXPECT_EQ(SimStatus(), 1);
    for (int round = 1; round <= 3; ++round) {
        Document("{" + std::string(static_cast<std::size_t>(round), ' '));
        EXPECT_EQ(SimStatus(), 1);
        EXPECT_EQ(SimStatus(), 1);
        EXPECT_EQ(Log().size(), static_cast<std::size_t>(round));
    }
}

TEST_F(DeviceFile, RecoversWhenTheDocumentDoes) {
    Document("{");
    EXPECT_LT(SimStatus(), 0);
    SimStatus(3);
    EXPECT_EQ(SimStatus(), 3);
}

TEST_F(DeviceFile, LastGoodOneStaysWhenTheFileVanishes) {
    SimStatus(1);
    EXPECT_EQ(SimStatus(), 1);
    std::filesystem::remove(device);
    EXPECT_EQ(SimStatus(), 1);
    EXPECT_EQ(SimStatus(), 1);
    EXPECT_THAT(Log(), ElementsAre("[SIMULATOR]:[ERROR] - " + device.string() +
                                   ": No such file or directory (keeping the last good device)"));
    SimStatus(2);
    EXPECT_EQ(SimStatus(), 2);
}

TEST_F(DeviceFile, AFileThatNeverExistedIsLoggedOnce) {
    EXPECT_EQ(binding::CurrentDevice(), nullptr);
    EXPECT_EQ(binding::CurrentDevice(), nullptr);
    EXPECT_THAT(Log(), ElementsAre("[SIMULATOR]:[ERROR] - " + device.string() +
                                   ": No such file or directory (no device)"));
}

TEST_F(DeviceFile, IsReadFromRegularFilesOnly) {
    ASSERT_EQ(mkfifo(device.c_str(), 0600), 0);
    EXPECT_EQ(binding::CurrentDevice(), nullptr);
    EXPECT_THAT(Log(), ElementsAre(::testing::HasSubstr("not a regular file")));
}

TEST_F(DeviceFile, AnotherDocumentIsAnotherDevice) {
    SimStatus(1);
    EXPECT_EQ(SimStatus(), 1);
    environment.Set("KESTAL_DEVICE", directory / "other.json");
    EXPECT_EQ(binding::CurrentDevice(), nullptr);
}

TEST_F(DeviceFile, WithoutAVariableTheInstalledDocumentIsUsed) {
    environment.Unset("KESTAL_DEVICE");
    EXPECT_THAT(binding::DevicePath(), ::testing::EndsWith("/kestal/devices/default.json"));
}

}  // namespace
