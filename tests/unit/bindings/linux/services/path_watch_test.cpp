// Watching a path whose folders come, go and refuse to be watched.
#include "bindings/linux/kernel/path_watch.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <systemd/sd-event.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "tests/support/scratch.h"

namespace {

using PathWatchDeathTest = SimulatedDevice;

constexpr unsigned int kNobody = 65534;

TEST_F(PathWatchDeathTest, FolderThatMayNotBeReadIsNoReasonToTryForEver) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    const std::filesystem::path closed = directory / "closed";
    std::filesystem::create_directory(closed);
    std::filesystem::permissions(closed, std::filesystem::perms::owner_all);
    std::filesystem::permissions(
        directory, std::filesystem::perms::others_exec | std::filesystem::perms::others_read,
        std::filesystem::perm_options::add);
    EXPECT_EXIT(
        {
            // Ends a watch that never comes to an end.
            (void)alarm(20);
            if (setgroups(0, nullptr) != 0 || setgid(kNobody) != 0 || setuid(kNobody) != 0) {
                _exit(2);
            }
            sd_event* event = nullptr;
            if (sd_event_new(&event) < 0) {
                _exit(3);
            }
            const binding::PathWatch watch(event, closed / "socket", [] {});
            _exit(0);
        },
        testing::ExitedWithCode(0), "");
}

}  // namespace
