// Runs a fuzz target on files, without libFuzzer, so that every build tries past findings again.
//
// usage: fuzz_TARGET [FILE | DIRECTORY]...
#include <cstdio>
#include <filesystem>
#include <set>
#include <string>

#include "fuzz/scratch.h"
#include "fuzz/target.h"

namespace {

using Paths = std::set<std::filesystem::path>;

Paths FilesAt(const std::filesystem::path& path) {
    if (!std::filesystem::is_directory(path)) {
        return {path};
    }
    Paths files;
    for (const auto& entry : std::filesystem::directory_iterator(path)) {
        if (entry.is_regular_file()) {
            files.insert(entry.path());
        }
    }
    return files;
}

}  // namespace

int main(int argc, char** argv) {
    int count = 0;
    for (int index = 1; index < argc; ++index) {
        for (const auto& path : FilesAt(argv[index])) {
            Require(std::filesystem::exists(path), "there is such a file", path.string());
            // Printed before the run, so that the last line names the file that crashes it.
            (void)std::fprintf(stderr, "%s\n", path.c_str());
            const std::string input = ReadFile(path);
            (void)LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()),
                                         input.size());
            ++count;
        }
    }
    Require(count > 0, "there is something to replay");
    return 0;
}
