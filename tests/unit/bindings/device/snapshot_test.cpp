// One answer never mixes two states of the device, and a damaged document never replaces a good
// one.
#include "bindings/simulator/snapshot.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <atomic>
#include <fstream>
#include <thread>

#include "platform/sysint.h"
#include "tests/support/scratch.h"

namespace {

using ::testing::ElementsAre;

class Snapshot : public SimulatedDevice {
  protected:
    void SimStatus(int status) const {
        Document("{\"sys\": {\"getSIMStatus\": " + std::to_string(status) + "}}");
    }

    /// The status that the platform reports, or minus the code that it fails with.
    static int SimStatus() {
        int status = 0;
        const int code = sys_getSIMStatus(&status);
        return code == 0 ? status : -code;
    }
};

TEST_F(Snapshot, StaysTheSameDuringASession) {
    SimStatus(1);
    EXPECT_EQ(sys_sdkInitialize(), 0);
    SimStatus(2);
    EXPECT_EQ(SimStatus(), 1);
    EXPECT_EQ(sys_sdkShutdown(), 0);
    EXPECT_EQ(sys_sdkInitialize(), 0);
    EXPECT_EQ(SimStatus(), 2);
}

TEST_F(Snapshot, StaysTheSameWhateverSessionsOtherThreadsHave) {
    SimStatus(1);
    EXPECT_EQ(sys_sdkInitialize(), 0);
    SimStatus(2);
    std::thread([] {
        EXPECT_EQ(SimStatus(), 1);
        EXPECT_EQ(sys_sdkInitialize(), 0);
        EXPECT_EQ(SimStatus(), 2);
        EXPECT_EQ(sys_sdkShutdown(), 0);
    }).join();
    EXPECT_EQ(SimStatus(), 1);
    EXPECT_EQ(sys_sdkShutdown(), 0);
    EXPECT_EQ(SimStatus(), 2);
}

TEST_F(Snapshot, IsTheNewestOutsideASession) {
    SimStatus(1);
    EXPECT_EQ(SimStatus(), 1);
    SimStatus(2);
    EXPECT_EQ(SimStatus(), 2);
}

TEST_F(Snapshot, IsReadAgainOnlyWhenTheFileHasChanged) {
    SimStatus(1);
    const auto first = binding::CurrentDevice();
    EXPECT_EQ(binding::CurrentDevice(), first);
    SimStatus(1);
    EXPECT_NE(binding::CurrentDevice(), first);
}

TEST_F(Snapshot, NoticesAChangeInPlaceOfTheSameSizeAtTheSameTime) {
    for (int status = 0; status < 10; ++status) {
        std::ofstream(device) << "{\"sys\": {\"getSIMStatus\": " << status << "}}";
        const std::array<timespec, 2> times{};
        ASSERT_EQ(utimensat(AT_FDCWD, device.c_str(), times.data(), 0), 0);
        EXPECT_EQ(SimStatus(), status);
    }
}

TEST_F(Snapshot, LastGoodOneStaysWhenTheDocumentIsDamaged) {
    SimStatus(1);
    EXPECT_EQ(SimStatus(), 1);
    Document("{\n\"sys\": {\"getSIMStatus\": \"x\"}}");
    EXPECT_EQ(SimStatus(), 1);
    EXPECT_EQ(sys_sdkInitialize(), 0);
    EXPECT_EQ(SimStatus(), 1);
    EXPECT_THAT(Log(), ElementsAre("[SIMULATOR]:[ERROR] - " + device.string() +
                                   ":2: sys.getSIMStatus: expected a 32-bit integer or "
                                   "{\"error\": N}, found a text (keeping the last good device)"));
}

TEST_F(Snapshot, EachDamagedStateIsLoggedOnce) {
    SimStatus(1);
    EXPECT_EQ(SimStatus(), 1);
    for (int round = 1; round <= 3; ++round) {
        Document("{" + std::string(static_cast<std::size_t>(round), ' '));
        EXPECT_EQ(SimStatus(), 1);
        EXPECT_EQ(SimStatus(), 1);
        EXPECT_EQ(Log().size(), static_cast<std::size_t>(round));
    }
}

TEST_F(Snapshot, RecoversWhenTheDocumentDoes) {
    Document("{");
    EXPECT_LT(SimStatus(), 0);
    SimStatus(3);
    EXPECT_EQ(SimStatus(), 3);
}

TEST_F(Snapshot, LastGoodOneStaysWhenTheFileVanishes) {
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

TEST_F(Snapshot, AFileThatNeverExistedIsLoggedOnce) {
    EXPECT_EQ(binding::CurrentDevice(), nullptr);
    EXPECT_EQ(binding::CurrentDevice(), nullptr);
    EXPECT_THAT(Log(), ElementsAre("[SIMULATOR]:[ERROR] - " + device.string() +
                                   ": No such file or directory (no device)"));
}

TEST_F(Snapshot, IsReadFromRegularFilesOnly) {
    ASSERT_EQ(mkfifo(device.c_str(), 0600), 0);
    EXPECT_EQ(binding::CurrentDevice(), nullptr);
    EXPECT_THAT(Log(), ElementsAre(::testing::HasSubstr("not a regular file")));
}

TEST_F(Snapshot, AnotherDocumentIsAnotherDevice) {
    SimStatus(1);
    EXPECT_EQ(SimStatus(), 1);
    environment.Set("KESTAL_DEVICE", directory / "other.json");
    EXPECT_EQ(binding::CurrentDevice(), nullptr);
}

TEST_F(Snapshot, WithoutAVariableTheInstalledDocumentIsUsed) {
    environment.Unset("KESTAL_DEVICE");
    EXPECT_THAT(binding::DevicePath(), ::testing::EndsWith("/kestal/devices/default.json"));
}

TEST_F(Snapshot, MayBeReadByThreads) {
    SimStatus(1);
    std::atomic<bool> wrong = false;
    std::vector<std::thread> threads;
    threads.reserve(2);
    for (int number = 0; number < 2; ++number) {
        threads.emplace_back([&wrong] {
            for (int round = 0; round < 200; ++round) {
                const int status = SimStatus();
                wrong = wrong || (status != 1 && status != 2);
            }
        });
    }
    for (int round = 0; round < 20; ++round) {
        SimStatus(1 + round % 2);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_FALSE(wrong);
}

}  // namespace
