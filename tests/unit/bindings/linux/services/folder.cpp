#include "tests/unit/bindings/linux/services/folder.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>

Folder::Folder() {
    std::string pattern = std::filesystem::temp_directory_path() / "kestal.XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("no folder for the test");
    }
    path = pattern;
}

Folder::~Folder() {
    std::filesystem::remove_all(path);
}

void Folder::Write(const std::string& name, const std::string& contents) const {
    std::filesystem::create_directories((path / name).parent_path());
    std::ofstream(path / name) << contents;
}
