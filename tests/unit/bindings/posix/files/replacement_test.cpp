// A new file becomes another one only if there is none.
#include "bindings/posix/files/replacement.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "tests/support/scratch.h"

namespace {

/// With which calls fail; 0 if they do not.
int linkError = 0;
int renameError = 0;

}  // namespace

/// Takes the place of the C library's.
extern "C" int link(const char* from, const char* to) noexcept {
    if (linkError != 0) {
        errno = linkError;
        return -1;
    }
    return static_cast<int>(syscall(SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0));
}

/// Takes the place of the C library's.
extern "C" int rename(const char* from, const char* to) noexcept {
    if (renameError != 0) {
        errno = renameError;
        return -1;
    }
    return static_cast<int>(syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}

namespace {

using binding::Replacement;

class NewFileWithLinks : public SimulatedDevice, public testing::WithParamInterface<int> {
  protected:
    NewFileWithLinks() { linkError = GetParam(); }
    ~NewFileWithLinks() override {
        linkError = 0;
        renameError = 0;
    }

    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(file.parent_path())) {
            names.push_back(entry.path().filename());
        }
        return names;
    }

    const std::filesystem::path file = directory / "folder" / "file";
};

TEST_P(NewFileWithLinks, BecomesAnotherOnlyIfThereIsNone) {
    std::filesystem::create_directory(file.parent_path());
    {
        Replacement first(file, 0600);
        first.Write("first");
        Replacement second(file, 0600);
        second.Write("second");
        first.BecomeTarget();
        try {
            second.BecomeTarget();
            FAIL();
        } catch (const std::system_error& error) {
            EXPECT_EQ(error.code(), std::errc::file_exists);
        }
    }
    EXPECT_EQ(ReadFile(file), "first");
    EXPECT_THAT(Names(), testing::ElementsAre("file"));
}

TEST_P(NewFileWithLinks, LeavesNothingBehindIfItCannotBecomeTheTarget) {
    std::filesystem::create_directory(file.parent_path());
    const bool needsRename = GetParam() != 0;
    renameError = ENOSPC;
    {
        Replacement replacement(file, 0600);
        replacement.Write("text");
        if (needsRename) {
            EXPECT_THROW(replacement.BecomeTarget(), std::system_error);
        } else {
            replacement.BecomeTarget();
        }
    }
    EXPECT_EQ(Names().empty(), needsRename);
}

INSTANTIATE_TEST_SUITE_P(ReplacementTest, NewFileWithLinks, testing::Values(0, EPERM, ENOSYS));

}  // namespace
