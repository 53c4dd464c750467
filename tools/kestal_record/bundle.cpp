#include "tools/kestal_record/bundle.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utf8.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <vector>

#include "tools/kestal_sources/source_report.h"
#include "version/version.h"

namespace {

constexpr std::size_t kMostLines = 200;

std::string ValidUtf8(const std::string& text) {
    std::string valid;
    utf8::replace_invalid(text.begin(), text.end(), std::back_inserter(valid));
    return valid;
}

/// The value of PRETTY_NAME in os-release.
std::string SystemName() {
    std::ifstream file("/etc/os-release");
    const std::string key = "PRETTY_NAME=";
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(key)) {
            std::string name = line.substr(key.size());
            std::erase(name, '"');
            return ValidUtf8(name);
        }
    }
    return "unknown";
}

Json LastLines(const std::string& text) {
    Json lines = Json::array();
    std::size_t end = text.size();
    while (end > 0 && lines.size() < kMostLines) {
        const std::size_t last = end - (text[end - 1] == '\n' ? 1 : 0);
        const std::size_t before = last == 0 ? std::string::npos : text.rfind('\n', last - 1);
        const std::size_t begin = before == std::string::npos ? 0 : before + 1;
        lines.push_back(ValidUtf8(text.substr(begin, last - begin)));
        end = begin;
    }
    std::reverse(lines.begin(), lines.end());
    return lines;
}

std::ifstream Opened(const std::string& path) {
    // Opening a pipe would wait for its writer.
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
        throw std::runtime_error(path + ": not a regular file");
    }
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    if (!file) {
        throw std::runtime_error(path + ": " + std::strerror(errno));
    }
    return file;
}

/// The end of a file that is long enough for the last lines.
std::string EndOf(const std::string& path) {
    constexpr std::streamoff kMost = 1 << 20;
    std::ifstream file = Opened(path);
    const auto size = static_cast<std::streamoff>(file.tellg());
    file.seekg(std::max<std::streamoff>(size - kMost, 0));
    return {std::istreambuf_iterator<char>(file), {}};
}

/// What the program prints, run without a shell; nothing unless it succeeds.
std::optional<std::string> OutputOf(std::vector<std::string> command) {
    std::array<int, 2> pipe{};
    if (pipe2(pipe.data(), O_CLOEXEC) != 0) {
        return std::nullopt;
    }
    posix_spawn_file_actions_t actions{};
    (void)posix_spawn_file_actions_init(&actions);
    (void)posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    (void)posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    (void)posix_spawn_file_actions_adddup2(&actions, pipe[1], STDOUT_FILENO);
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string& argument : command) {
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);
    pid_t process = 0;
    const int problem =
        posix_spawnp(&process, arguments.front(), &actions, nullptr, arguments.data(), environ);
    (void)posix_spawn_file_actions_destroy(&actions);
    (void)close(pipe[1]);
    std::string text;
    std::array<char, 4096> part{};
    ssize_t size = 0;
    while (problem == 0 && (size = read(pipe[0], part.data(), part.size())) > 0) {
        text.append(part.data(), static_cast<std::size_t>(size));
    }
    (void)close(pipe[0]);
    int status = 0;
    const bool hasEnded = problem == 0 && waitpid(process, &status, 0) == process;
    return hasEnded && WIFEXITED(status) && WEXITSTATUS(status) == 0 ? std::optional(text)
                                                                     : std::nullopt;
}

Json JournalLines() {
    const auto text =
        OutputOf({"journalctl", "--unit=kestal", "--lines=" + std::to_string(kMostLines),
                  "--output=cat", "--no-pager", "--quiet"});
    if (!text) {
        return "no log: journalctl has failed; --log names a file";
    }
    return text->empty() ? "no log: the journal has nothing of kestal; --log names a file"
                         : LastLines(*text);
}

/// Empty for the journal.
std::string LogPath(const std::string& file) {
    const char* const variable = std::getenv("KESTAL_LOG");
    return file.empty() && variable != nullptr ? variable : file;
}

}  // namespace

Json Versions(const RecordedBinding& recorded) {
    utsname system{};
    (void)uname(&system);
    return {{"kestal", KestalVersion()},
            {"binding", recorded.name},
            {"system", SystemName()},
            {"kernel", std::string(system.sysname) + " " + system.release + " " + system.machine}};
}

void MustHaveLog(const std::string& file) {
    if (const std::string path = LogPath(file); !path.empty()) {
        (void)Opened(path);
    }
}

Json LastLogLines(const std::string& file) {
    const std::string path = LogPath(file);
    try {
        return path.empty() ? JournalLines() : LastLines(EndOf(path));
    } catch (const std::runtime_error& error) {
        return ValidUtf8(std::string("no log: ") + error.what());
    }
}

Json SourceReport(const RecordedBinding& recorded) {
    if (!recorded.hasSources) {
        return "no sources: the " + recorded.name + " binding has none";
    }
    try {
        return ReadReport();
    } catch (const std::exception& error) {
        return ValidUtf8(error.what());
    }
}
