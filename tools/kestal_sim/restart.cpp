#include "tools/kestal_sim/restart.h"

#include <sys/types.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <csignal>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "bindings/simulator/device_file.h"

namespace {

namespace fs = std::filesystem;

std::string ContentsOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// The document that the process with the folder @p process in /proc has been started with; empty
/// when that cannot be told.
fs::path DeviceOf(const fs::path& process) {
    constexpr std::string_view kName = "KESTAL_DEVICE=";
    const std::string environment = ContentsOf(process / "environ");
    if (environment.empty()) {
        return {};
    }
    fs::path device = binding::DefaultDevicePath();
    for (std::size_t begin = 0; begin < environment.size();) {
        const std::string one = environment.substr(begin, environment.find('\0', begin) - begin);
        if (one.starts_with(kName) && one.size() > kName.size()) {
            device = one.substr(kName.size());
        }
        begin += one.size() + 1;
    }
    std::error_code ignored;
    return fs::weakly_canonical(fs::read_symlink(process / "cwd", ignored) / device, ignored);
}

/// The processes of the services that run on @p device, except for those of other users.
std::vector<pid_t> Running(const fs::path& device) {
    std::vector<pid_t> services;
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator("/proc", ignored)) {
        const std::string name = entry.path().filename();
        pid_t process = 0;
        const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), process);
        if (error == std::errc() && *end == '\0' &&
            ContentsOf(entry.path() / "comm") == "kestal.cgi\n" &&
            DeviceOf(entry.path()) == device) {
            services.push_back(process);
        }
    }
    return services;
}

bool HaveCommon(const std::vector<pid_t>& some, const std::vector<pid_t>& others) {
    return std::any_of(some.begin(), some.end(), [&](pid_t one) {
        return std::find(others.begin(), others.end(), one) != others.end();
    });
}

}  // namespace

std::vector<pid_t> ServicesOn(const fs::path& device) {
    const fs::path path = fs::weakly_canonical(device);
    std::vector<pid_t> services = Running(path);
    if (services.empty()) {
        throw std::runtime_error("no service of this user runs on " + path.string());
    }
    return services;
}

void RestartServices(const fs::path& device, const std::vector<pid_t>& before) {
    // A service that is just serving a request ends after it, which may take some seconds.
    constexpr auto kPatience = std::chrono::seconds(20);
    constexpr auto kInterval = std::chrono::milliseconds(20);
    const fs::path path = fs::weakly_canonical(device);
    for (const pid_t process : before) {
        if (kill(process, SIGTERM) != 0 && errno != ESRCH) {
            throw std::system_error(errno, std::generic_category(),
                                    "the service with process id " + std::to_string(process));
        }
    }
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    std::vector<pid_t> now = before;
    while (now.size() < before.size() || HaveCommon(now, before)) {
        if (std::chrono::steady_clock::now() > deadline) {
            throw std::runtime_error(HaveCommon(now, before)
                                         ? "the service does not end"
                                         : "the service has ended, and none has been started");
        }
        std::this_thread::sleep_for(kInterval);
        now = Running(path);
    }
}
