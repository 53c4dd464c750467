#include "tools/kestal_sim/document.h"

#include <nlohmann/json.hpp>
#include <stdexcept>
#include <system_error>

#include "bindings/posix/files/file_io.h"
#include "bindings/posix/json/json_text.h"
#include "bindings/simulator/device_file.h"
#include "bindings/simulator/edit/device_edit.h"
#include "bindings/simulator/edit/installed_file.h"

std::string Contents(const std::string& file) {
    binding::FileStamp ignored;
    return binding::ReadFile(file, ignored);
}

nlohmann::ordered_json CurrentDocument() {
    const std::string path = binding::DevicePath();
    auto document = binding::ReadGoodDocument(path, Contents(path));
    binding::MakeDueChange(document);
    return document;
}

void ChangeDocument(const std::function<void(nlohmann::ordered_json&)>& change) {
    binding::ChangeDevice(binding::DevicePath(), change);
}

nlohmann::ordered_json ValueOf(const std::string& text) {
    if (!nlohmann::ordered_json::accept(text)) {
        return text;
    }
    try {
        return binding::ParseStrictly(text);
    } catch (const binding::SyntaxError& error) {
        throw std::runtime_error("the value: " + std::string(error.what()));
    }
}

std::filesystem::path ShippedFolder(const std::string& folder) {
    namespace fs = std::filesystem;
    const fs::path here = fs::read_symlink("/proc/self/exe").parent_path();
    std::error_code isInstalled;
    const fs::path sources = fs::canonical(here / "kestal-data" / folder, isInstalled);
    return isInstalled ? (here / KESTAL_DATA_FROM_PROGRAM / folder).lexically_normal() : sources;
}

std::string FileNamed(const std::string& name, const std::string& folder) {
    return binding::FileOrInstalled(name, ShippedFolder(folder));
}
