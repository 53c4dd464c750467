#include "bindings/simulator/edit/installed_file.h"

#include <algorithm>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "bindings/names/nearest_name.h"

namespace binding {

std::vector<std::string> NamesIn(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(folder, ignored)) {
        if (entry.path().extension() == ".json") {
            names.push_back(entry.path().stem().string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string FileOrInstalled(const std::string& name, const std::filesystem::path& folder) {
    if (name.empty()) {
        throw std::runtime_error("expected a file's name, found nothing");
    }
    if (name.find('/') != std::string::npos || std::filesystem::exists(name)) {
        return name;
    }
    const std::string installed = (folder / name).string();
    for (const auto& candidate : {installed, installed + ".json"}) {
        if (std::filesystem::exists(candidate)) {
            return candidate;
        }
    }
    const std::string nearest = NearestName(name, NamesIn(folder));
    if (!nearest.empty()) {
        throw std::runtime_error(name + ": No such file or directory" + Suggestion(nearest));
    }
    return name;
}

}  // namespace binding
