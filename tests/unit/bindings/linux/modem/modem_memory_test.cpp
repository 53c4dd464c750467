// What is remembered of the modem reaches the disk as a whole, and nobody waits for that.
#include "bindings/linux/modem/modem_memory.h"

#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <functional>
#include <future>
#include <mutex>
#include <string>
#include <vector>

#include "tests/support/scratch.h"

namespace {

/// What happens when the disk is waited for; set while no file is being written.
std::function<void(bool isFolder)> whenSynchronised;

}  // namespace

/// Takes the place of the C library's, for a disk that takes its time.
extern "C" int fsync(int descriptor) {
    struct stat status = {};
    if (whenSynchronised && fstat(descriptor, &status) == 0) {
        whenSynchronised(S_ISDIR(status.st_mode));
    }
    return static_cast<int>(syscall(SYS_fsync, descriptor));
}

namespace {

using binding::ModemMemory;

constexpr const char* kOff = "{\"dataOff\":true,\"severalSlots\":false}\n";
constexpr const char* kOn = "{\"dataOff\":false,\"severalSlots\":false}\n";

class ModemMemoryFile : public SimulatedDevice {
  protected:
    ModemMemoryFile() {
        sd_event* made = nullptr;
        EXPECT_GE(sd_event_new(&made), 0);
        event.reset(made);
        environment.Set("STATE_DIRECTORY", directory);
    }

    ~ModemMemoryFile() override { whenSynchronised = nullptr; }

    void ServeUntil(const std::function<bool()>& condition) const {
        constexpr std::uint64_t kMinute = 60'000'000;
        while (!condition()) {
            ASSERT_GT(sd_event_run(event.get(), kMinute), 0) << "nothing happens";
        }
    }

    const std::string path = directory / "modem";
    binding::EventPointer event;
    int changes = 0;
};

TEST_F(ModemMemoryFile, TheOldContentsStandUntilTheNewOnesAreOnTheDisk) {
    WriteFile(path, kOn);
    std::promise<void> waits;
    std::promise<void> disk;
    std::vector<std::string> found;
    whenSynchronised = [&](bool isFolder) {
        found.push_back((isFolder ? "folder, " : "file, ") + ReadFile(path));
        if (!isFolder) {
            waits.set_value();
            disk.get_future().wait();
        }
    };
    {
        ModemMemory memory(event.get(), [] {});
        memory.SetDataOff(true);
        // The loop goes on while the disk does not.
        waits.get_future().wait();
        EXPECT_TRUE(memory.IsDataOff());
        EXPECT_EQ(ReadFile(path), kOn);
        disk.set_value();
    }
    // Whose owner has ended has it on the disk, and its name, too.
    EXPECT_EQ(ReadFile(path), kOff);
    EXPECT_EQ(found, (std::vector<std::string>{std::string("file, ") + kOn,
                                               std::string("folder, ") + kOff}));
}

TEST_F(ModemMemoryFile, WhatIsSetStandsWhileAnotherProgramChangesTheFile) {
    std::promise<void> waits;
    std::promise<void> disk;
    std::once_flag once;
    whenSynchronised = [&](bool /*isFolder*/) {
        std::call_once(once, [&] {
            waits.set_value();
            disk.get_future().wait();
        });
    };
    ModemMemory memory(event.get(), [this] { ++changes; });
    memory.SetDataOff(true);
    waits.get_future().wait();
    WriteFile(path, kOn);
    // The change of the other program is noticed, but this one is on its way.
    ASSERT_GT(sd_event_run(event.get(), 60'000'000), 0);
    EXPECT_TRUE(memory.IsDataOff());
    memory.SetSeveralSlots(true);
    disk.set_value();
    ServeUntil([&] { return ReadFile(path) == "{\"dataOff\":true,\"severalSlots\":true}\n"; });
    EXPECT_TRUE(memory.IsDataOff());
    EXPECT_TRUE(memory.HasSeveralSlots());
    EXPECT_EQ(changes, 0);
}

TEST_F(ModemMemoryFile, AChangeOfAnotherProgramIsNoticed) {
    ModemMemory memory(event.get(), [this] { ++changes; });
    memory.SetDataOff(true);
    memory.SetDataOff(false);
    ServeUntil([this] { return std::filesystem::exists(path) && ReadFile(path) == kOn; });
    WriteFile(path, kOff);
    ServeUntil([&] { return memory.IsDataOff(); });
    EXPECT_EQ(changes, 1);
}

TEST_F(ModemMemoryFile, WhatCannotBeRememberedIsLoggedAndCounts) {
    environment.Set("STATE_DIRECTORY", directory / "none");
    {
        ModemMemory memory(event.get(), [] {});
        memory.SetDataOff(true);
        EXPECT_TRUE(memory.IsDataOff());
    }
    EXPECT_THAT(Log(), ::testing::Contains(::testing::HasSubstr("modem: not remembered: ")));
}

}  // namespace
