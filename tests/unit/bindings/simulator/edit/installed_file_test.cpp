// Which file is found for a name.
#include "bindings/simulator/edit/installed_file.h"

#include <stdexcept>

#include "tests/support/scratch.h"

namespace {

using binding::FileOrInstalled;

class InstalledFile : public SimulatedDevice {
  protected:
    InstalledFile() {
        WriteFile(directory / "roaming.json", "{}");
        WriteFile(directory / "no-sim.json", "{}");
        WriteFile(directory / "README", "");
    }

    std::string Found(const std::string& name) const {
        try {
            return FileOrInstalled(name, directory);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
    }
};

TEST_F(InstalledFile, IsFoundByItsName) {
    EXPECT_EQ(Found("roaming"), directory / "roaming.json");
    EXPECT_EQ(Found("roaming.json"), directory / "roaming.json");
}

TEST_F(InstalledFile, IsNeverNamedByAPath) {
    EXPECT_EQ(Found("./roaming"), "./roaming");
    EXPECT_EQ(Found("./roamin"), "./roamin");
}

TEST_F(InstalledFile, IsSuggestedForAMisspeltName) {
    EXPECT_EQ(Found("roamin"), "roamin: No such file or directory; did you mean roaming?");
    EXPECT_EQ(Found("no-sin"), "no-sin: No such file or directory; did you mean no-sim?");
    EXPECT_EQ(Found("README2"), "README2");
}

TEST_F(InstalledFile, NeedsNoFolder) {
    EXPECT_EQ(FileOrInstalled("roamin", directory / "none"), "roamin");
}

}  // namespace
