// One answer never mixes two states of the device.
#include <atomic>
#include <thread>

#include "platform/sysint.h"
#include "tests/support/sim_status.h"

namespace {

class Snapshot : public DeviceWithSimStatus {};

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
