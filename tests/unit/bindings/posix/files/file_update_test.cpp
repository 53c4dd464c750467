// Files are replaced as a whole, under a lock that processes and threads honour.
#include "bindings/posix/files/file_update.h"

#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <stdexcept>
#include <system_error>
#include <thread>

#include "tests/support/scratch.h"

namespace {

std::atomic<int> umaskCalls = 0;

}  // namespace

/// Takes the place of the C library's, to count its calls.
extern "C" mode_t umask(mode_t mask) noexcept {
    ++umaskCalls;
    return static_cast<mode_t>(syscall(SYS_umask, mask));
}

namespace {

using binding::MissingFile;
using binding::UpdateFile;
using binding::UpdateFileWithoutLock;

class FileUpdate : public SimulatedDevice {
  protected:
    static mode_t Mode(const std::filesystem::path& path) {
        struct stat status = {};
        EXPECT_EQ(stat(path.c_str(), &status), 0);
        return status.st_mode & 07777U;
    }

    static ino_t Inode(const std::filesystem::path& path) {
        struct stat status = {};
        EXPECT_EQ(stat(path.c_str(), &status), 0);
        return status.st_ino;
    }

    void CountTo(int rounds) const {
        for (int round = 0; round < rounds; ++round) {
            UpdateFile(device, MissingFile::fails, [](const std::string& number) {
                return std::to_string(std::stoi(number) + 1);
            });
        }
    }
};

TEST_F(FileUpdate, ReplacesTheFileAndKeepsItsMode) {
    for (const mode_t mode : {0600U, 0644U, 0664U}) {
        Document("a");
        ASSERT_EQ(chmod(device.c_str(), mode), 0);
        const ino_t before = Inode(device);
        UpdateFile(device, MissingFile::fails, [](const std::string& text) { return text + "b"; });
        EXPECT_EQ(ReadFile(device), "ab");
        EXPECT_EQ(Mode(device), mode);
        EXPECT_NE(Inode(device), before);
    }
}

TEST_F(FileUpdate, WritesNothingWhenNothingChanges) {
    Document("a");
    const ino_t before = Inode(device);
    UpdateFile(device, MissingFile::fails, [](const std::string& text) { return text; });
    EXPECT_EQ(Inode(device), before);
}

TEST_F(FileUpdate, CreatesAFileForItsOwnerOnly) {
    UpdateFile(device, MissingFile::created, [](const std::string& text) {
        EXPECT_EQ(text, "");
        return "new";
    });
    EXPECT_EQ(ReadFile(device), "new");
    EXPECT_EQ(Mode(device), 0600U);
}

TEST_F(FileUpdate, CreatesAFileForAllAsTheUmaskAllows) {
    for (const mode_t mask : {022U, 027U}) {
        std::filesystem::remove(device);
        const mode_t before = umask(mask);
        UpdateFile(device, MissingFile::createdForAll, [](const auto&) { return "new"; });
        (void)umask(before);
        EXPECT_EQ(Mode(device), 0666U & ~mask);
    }
}

TEST_F(FileUpdate, NeverChangesTheUmaskWhichAllThreadsShare) {
    umaskCalls = 0;
    UpdateFileWithoutLock(device, MissingFile::createdForAll, [](const auto&) { return "new"; });
    EXPECT_EQ(umaskCalls, 0);
}

TEST_F(FileUpdate, WithoutLockKeepsWhatSomebodyElseHasChangedMeanwhile) {
    for (const char* before : {"", "a"}) {
        if (*before != '\0') {
            Document(before);
        }
        int calls = 0;
        UpdateFileWithoutLock(device, MissingFile::createdForAll, [&](const std::string& text) {
            EXPECT_EQ(text, calls == 0 ? before : "other");
            if (++calls == 1) {
                Document("other");
            }
            return text + "c";
        });
        EXPECT_EQ(ReadFile(device), "otherc");
        EXPECT_EQ(calls, 2);
        std::filesystem::remove(device);
    }
}

TEST_F(FileUpdate, FailsWithoutAFileWhenThereMustBeOne) {
    EXPECT_THROW(UpdateFile(device, MissingFile::fails, [](const auto& text) { return text; }),
                 std::system_error);
    EXPECT_FALSE(std::filesystem::exists(device));
}

TEST_F(FileUpdate, DoesNotChangeTheFileIfTheChangeFails) {
    Document("a");
    EXPECT_THROW(
        UpdateFile(device, MissingFile::fails,
                   [](const std::string&) -> std::string { throw std::runtime_error("no"); }),
        std::runtime_error);
    EXPECT_EQ(ReadFile(device), "a");
}

TEST_F(FileUpdate, FollowsALinkAndKeepsIt) {
    Document("a");
    const std::filesystem::path link = directory / "link";
    std::filesystem::create_symlink("device.json", link);
    UpdateFile(link, MissingFile::fails, [](const auto& text) { return text + "b"; });
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(ReadFile(device), "ab");
}

TEST_F(FileUpdate, ThreadsLoseNothingToEachOther) {
    Document("0");
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([this] { CountTo(25); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(ReadFile(device), "100");
}

TEST_F(FileUpdate, ProcessesLoseNothingToEachOther) {
    Document("0");
    std::vector<pid_t> children;
    children.reserve(4);
    for (int number = 0; number < 4; ++number) {
        const pid_t child = fork();
        if (child == 0) {
            CountTo(25);
            _exit(0);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = -1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(ReadFile(device), "100");
}

}  // namespace
