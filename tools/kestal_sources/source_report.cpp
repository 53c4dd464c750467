#include "tools/kestal_sources/source_report.h"

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>
#include <stdexcept>

namespace {

constexpr timeval kAnswerTime{.tv_sec = 5, .tv_usec = 0};

std::string& SocketPath() {
    static std::string path = [] {
        const char* const named = std::getenv("KESTAL_SOURCES");
        return std::string(named == nullptr || *named == '\0' ? "/run/kestal/sources" : named);
    }();
    return path;
}

[[noreturn]] void Fail(const std::string& path) {
    throw std::runtime_error(path + ": " + std::strerror(errno) + " (does the service run?)");
}

/// Owns the descriptor of a socket.
class Socket {
  public:
    Socket() : descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {}
    ~Socket() { (void)close(descriptor); }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;

    int Descriptor() const { return descriptor; }

  private:
    int descriptor;
};

std::string ReadAll(const std::string& path) {
    const Socket connection;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        Fail(path);
    }
    std::copy(path.begin(), path.end(), address.sun_path);
    (void)setsockopt(connection.Descriptor(), SOL_SOCKET, SO_RCVTIMEO, &kAnswerTime,
                     sizeof kAnswerTime);
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): how sockets take addresses
    const auto* const name = reinterpret_cast<const sockaddr*>(&address);
    if (connect(connection.Descriptor(), name, sizeof address) != 0) {
        Fail(path);
    }
    std::string text;
    std::array<char, 4096> part{};
    ssize_t size = 0;
    while ((size = read(connection.Descriptor(), part.data(), part.size())) != 0) {
        if (size < 0) {
            Fail(path);
        }
        text.append(part.data(), static_cast<std::size_t>(size));
    }
    return text;
}

/// Local time of @p seconds since the epoch; "-" for a state that has not begun.
std::string TimeText(std::int64_t seconds) {
    const std::time_t time = seconds;
    std::tm local{};
    if (seconds == 0 || localtime_r(&time, &local) == nullptr) {
        return "-";
    }
    std::array<char, 32> text{};
    (void)std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &local);
    return text.data();
}

std::string TextOf(const Json& source, const char* name) {
    const auto found = source.find(name);
    return found != source.end() && found->is_string() ? found->get<std::string>() : "";
}

std::int64_t SinceOf(const Json& source) {
    const auto found = source.find("since");
    return found != source.end() && found->is_number_integer() ? found->get<std::int64_t>() : 0;
}

}  // namespace

Setting SocketSetting() {
    return {.option = {.name = "--socket",
                       .description = "Where the service tells it (KESTAL_SOURCES, or else "
                                      "/run/kestal/sources)",
                       .value = "PATH"},
            .apply = [](const std::string& path) { SocketPath() = path; }};
}

Json ReadReport() {
    return ReadReport(SocketPath());
}

Json ReadReport(const std::string& path) {
    Json report = Json::parse(ReadAll(path), nullptr, false);
    const bool isList =
        report.is_array() &&
        std::all_of(report.begin(), report.end(), [](const Json& one) { return one.is_object(); });
    if (!isList) {
        throw std::runtime_error(path + ": this is no report on sources");
    }
    return report;
}

void WriteSources(std::ostream& out, const Json& report) {
    for (const Json& source : report) {
        out << std::left << std::setw(16) << TextOf(source, "name") << std::setw(9)
            << TextOf(source, "state") << TimeText(SinceOf(source));
        if (const std::string reason = TextOf(source, "reason"); !reason.empty()) {
            out << "  " << reason;
        }
        out << '\n';
    }
}

Json SourceNamed(const Json& report, const std::string& name) {
    std::string names;
    for (const Json& source : report) {
        if (TextOf(source, "name") == name) {
            return source;
        }
        names += " " + TextOf(source, "name");
    }
    throw std::runtime_error("there is no source '" + name + "'; there are:" + names);
}
