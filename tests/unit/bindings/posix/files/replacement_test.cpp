// A new file becomes another one only if there is none.
#include "bindings/posix/files/replacement.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "tests/support/scratch.h"

namespace {

/// Of a file system that knows no links.
bool hasNoLinks = false;

}  // namespace

/// Takes the place of the C library's.
extern "C" int link(const char* from, const char* to) noexcept {
    if (hasNoLinks) {
        errno = EPERM;
        return -1;
    }
    return static_cast<int>(syscall(SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0));
}

namespace {

using binding::Replacement;

class NewFileWithLinks : public SimulatedDevice, public testing::WithParamInterface<bool> {
  protected:
    NewFileWithLinks() { hasNoLinks = !GetParam(); }
    ~NewFileWithLinks() override { hasNoLinks = false; }

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

INSTANTIATE_TEST_SUITE_P(ReplacementTest, NewFileWithLinks, testing::Bool());

}  // namespace
