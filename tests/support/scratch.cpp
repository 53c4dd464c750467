#include "tests/support/scratch.h"

#include <array>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include "platform/sysint.h"
#include "platform/toru_dbg.h"

Environment::~Environment() {
    for (const auto& [name, value] : before) {
        if (value) {
            (void)setenv(name.c_str(), value->c_str(), 1);
        } else {
            (void)unsetenv(name.c_str());
        }
    }
}

void Environment::Set(const std::string& name, const std::string& value) {
    Remember(name);
    (void)setenv(name.c_str(), value.c_str(), 1);
}

void Environment::Unset(const std::string& name) {
    Remember(name);
    (void)unsetenv(name.c_str());
}

void Environment::Remember(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    before.try_emplace(name, value == nullptr ? std::nullopt : std::optional<std::string>(value));
}

SimulatedDevice::SimulatedDevice() {
    std::string name = (std::filesystem::temp_directory_path() / "simulator.XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("no scratch directory");
    }
    directory = name;
    device = directory / "device.json";
    environment.Set("KESTAL_DEVICE", device);
    environment.Unset("KESTAL_SESSIONS");
    environment.Unset("KESTAL_LOG_LEVEL");
    environment.Unset("NOTIFY_SOCKET");
    // The first start in a process logs the version. It goes to /dev/null here, so that no test
    // depends on being the first one.
    environment.Set("KESTAL_LOG", "/dev/null");
    [[maybe_unused]] static const int started = toru_dbg_start("kestal.cgi");
    environment.Set("KESTAL_LOG", directory / "log");
    (void)toru_dbg_start("kestal.cgi");
}

SimulatedDevice::~SimulatedDevice() {
    (void)sys_sdkShutdown();
    toru_dbg_stop();
    std::error_code ignored;
    std::filesystem::remove_all(directory, ignored);
}

void SimulatedDevice::Document(const std::string& text) const {
    WriteFile(device, text);
}

void SimulatedDevice::WriteFile(const std::filesystem::path& path, const std::string& text) {
    const std::filesystem::path next = path.string() + ".next";
    std::ofstream(next, std::ios::binary) << text;
    std::filesystem::rename(next, path);
}

std::string SimulatedDevice::ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> SimulatedDevice::Log() const {
    std::istringstream log(ReadFile(directory / "log"));
    std::vector<std::string> messages;
    for (std::string line; std::getline(log, line);) {
        const std::size_t message = line.find("] ");
        messages.push_back(message == std::string::npos ? line : line.substr(message + 2));
    }
    return messages;
}
