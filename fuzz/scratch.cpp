#include "fuzz/scratch.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "fuzz/target.h"

namespace {

class Scratch {
  public:
    Scratch() {
        std::string name = (std::filesystem::temp_directory_path() / "kestal-fuzz.XXXXXX").string();
        Require(mkdtemp(name.data()) != nullptr, "there is a scratch directory", name);
        path = name;
    }
    ~Scratch() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    const std::filesystem::path& Path() const { return path; }

  private:
    std::filesystem::path path;
};

}  // namespace

const std::filesystem::path& ScratchDirectory() {
    static const Scratch scratch;
    return scratch.Path();
}

void WriteFile(const std::filesystem::path& path, const std::string& contents) {
    std::ofstream(path, std::ios::binary) << contents;
}

std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void ConfineSimulator() {
    (void)setenv("KESTAL_LOG", "/dev/null", 1);
    (void)setenv("KESTAL_LOG_LEVEL", "7", 1);
    (void)setenv("KESTAL_SYSLOG", (ScratchDirectory() / "nobody").c_str(), 1);
    (void)unsetenv("KESTAL_SESSIONS");
    (void)unsetenv("NOTIFY_SOCKET");
    (void)PlaceDevice("{}");
}

std::filesystem::path PlaceDevice(const std::string& document) {
    static std::filesystem::path path;
    static unsigned long count = 0;
    if (!path.empty()) {
        std::filesystem::remove(path);
    }
    path = ScratchDirectory() / (std::to_string(++count) + ".json");
    WriteFile(path, document);
    (void)setenv("KESTAL_DEVICE", path.c_str(), 1);
    return path;
}
