#include "bindings/linux/position/gpsd_report.h"

#include <algorithm>
#include <cstddef>
#include <nlohmann/json.hpp>

#include "bindings/linux/text.h"
#include "platform/sysint.h"

namespace binding {

namespace {

constexpr std::size_t kMostReceivers = 16;

std::string TextOf(const nlohmann::json& object, const char* name) {
    const auto member = object.find(name);
    return member != object.end() && member->is_string() ? member->get<std::string>() : "";
}

/// The mode of the receiver @p path; null when there are too many.
int* ModeOf(std::map<std::string, int, std::less<>>& modes, const std::string& path) {
    const auto known = modes.find(path);
    if (known == modes.end() && modes.size() == kMostReceivers) {
        return nullptr;
    }
    return &modes[path];
}

/// Whether the receiver that @p device describes has been opened. When it is closed, gpsd reports
/// the number 0 in place of the time.
bool IsActive(const nlohmann::json& device) {
    const auto activated = device.find("activated");
    return activated == device.end() || !activated->is_number() || *activated != 0;
}

}  // namespace

bool GpsReceivers::Read(std::string_view line) {
    // Most lines describe satellites and are long.
    const bool isOurs = line.find("\"TPV\"") != std::string_view::npos ||
                        line.find("\"DEVICE") != std::string_view::npos;
    if (!isOurs) {
        const std::string_view text = Trimmed(line);
        flaws.line = !text.starts_with('{') || !text.ends_with('}');
        return false;
    }
    const int before = Status();
    ReadReport(line);
    return Status() != before;
}

int GpsReceivers::Status() const {
    if (modes.empty()) {
        return SYS_GPS_OFF;
    }
    const bool found = std::any_of(modes.begin(), modes.end(),
                                   [](const auto& entry) { return entry.second >= 2; });
    return found ? SYS_GPS_GOT_FIX : SYS_GPS_SEARCHING;
}

void GpsReceivers::ReadReport(std::string_view line) {
    const auto report = nlohmann::json::parse(line, nullptr, false);
    flaws.line = !report.is_object();
    if (flaws.line) {
        return;
    }
    const std::string kind = TextOf(report, "class");
    if (kind == "TPV") {
        ReadPosition(report);
    } else if (kind == "DEVICE") {
        if (IsActive(report)) {
            (void)ModeOf(modes, TextOf(report, "path"));
        } else {
            modes.erase(TextOf(report, "path"));
        }
    } else if (kind == "DEVICES") {
        decltype(modes) listed;
        const auto devices = report.find("devices");
        for (const auto& device : devices == report.end() ? nlohmann::json() : *devices) {
            const std::string path = TextOf(device, "path");
            int* mode = IsActive(device) ? ModeOf(listed, path) : nullptr;
            const auto known = modes.find(path);
            if (mode != nullptr && known != modes.end()) {
                *mode = known->second;
            }
        }
        modes = std::move(listed);
    }
}

void GpsReceivers::ReadPosition(const nlohmann::json& report) {
    const auto mode = report.find("mode");
    flaws.mode = mode == report.end() || !mode->is_number_integer();
    int* known = ModeOf(modes, TextOf(report, "device"));
    if (known != nullptr && !flaws.mode) {
        *known = static_cast<int>(std::clamp<std::int64_t>(mode->get<std::int64_t>(), 0, 3));
    }
}

}  // namespace binding
