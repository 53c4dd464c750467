#include "bindings/posix/session/session_store.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sha2.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

#include "bindings/posix/files/file_io.h"
#include "bindings/posix/files/file_update.h"
#include "bindings/posix/json/json_text.h"

namespace binding {

namespace {

std::string WriteSessions(const std::vector<Session>& sessions) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Session& session : sessions) {
        list.push_back({{"digest", session.digest},
                        {"address", session.address},
                        {"userAgentDigest", session.userAgentDigest},
                        {"opened", session.opened},
                        {"renewed", session.renewed},
                        {"idleSeconds", session.idleSeconds}});
    }
    return nlohmann::ordered_json{{"sessions", list}}.dump(4) + "\n";
}

std::vector<Session> OnlyLive(const std::string& store) {
    std::vector<Session> sessions = ReadSessions(store);
    std::erase_if(sessions, [](const Session& session) { return !session.IsLive(Now()); });
    return sessions;
}

std::int64_t Seconds(const nlohmann::ordered_json& entry, const char* name) {
    const nlohmann::ordered_json& value = entry.at(name);
    if (!value.is_number_unsigned() || !std::in_range<std::uint32_t>(value.get<std::uint64_t>())) {
        throw std::runtime_error(std::string(name) + " is not a number of seconds");
    }
    return value.get<std::int64_t>();
}

/// Whether @p bytes begin like an IPv4 address mapped into IPv6.
bool IsMapped(const std::uint8_t* bytes) {
    constexpr std::array<std::uint8_t, 12> kPrefix = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF};
    return std::equal(kPrefix.begin(), kPrefix.end(), bytes);
}

}  // namespace

std::string SessionStorePath() {
    const char* path = std::getenv("KESTAL_SESSIONS");
    return path == nullptr || *path == '\0' ? DefaultSessionStorePath() : path;
}

std::int64_t Now() {
    return std::chrono::duration_cast<std::chrono::seconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

std::string DigestOf(std::string_view text) {
    std::array<char, SHA256_DIGEST_STRING_LENGTH> digest{};
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): text as bytes
    SHA256Data(reinterpret_cast<const std::uint8_t*>(text.data()), text.size(), digest.data());
    return digest.data();
}

bool SameDigest(std::string_view left, std::string_view right) {
    if (left.size() != right.size()) {
        return false;
    }
    unsigned int difference = 0;
    for (std::size_t index = 0; index < left.size(); ++index) {
        difference |= static_cast<unsigned int>(left[index] ^ right[index]);
    }
    return difference == 0;
}

std::string AddressText(const webui_addr_t& address) {
    const std::uint8_t* bytes = address.address;
    int family = static_cast<int>(address.family);
    if (family == AF_INET6 && IsMapped(bytes)) {
        family = AF_INET;
        bytes += sizeof(in6_addr) - sizeof(in_addr);
    }
    std::array<char, INET6_ADDRSTRLEN> text{};
    return inet_ntop(family, bytes, text.data(), text.size()) == nullptr ? "" : text.data();
}

std::vector<Session> ReadSessions(const std::string& store) {
    std::vector<Session> sessions;
    if (store.empty()) {
        return sessions;
    }
    const auto document = ParseStrictly(store);
    for (const nlohmann::ordered_json& entry : document.at("sessions")) {
        sessions.push_back({.digest = entry.at("digest"),
                            .address = entry.at("address"),
                            .userAgentDigest = entry.at("userAgentDigest"),
                            .opened = Seconds(entry, "opened"),
                            .renewed = Seconds(entry, "renewed"),
                            .idleSeconds = Seconds(entry, "idleSeconds")});
    }
    return sessions;
}

std::vector<Session> LiveSessions() {
    const std::string path = SessionStorePath();
    FileStamp stamp = StampOf(path);
    return stamp.error == ENOENT ? std::vector<Session>() : OnlyLive(ReadFile(path, stamp));
}

void UpdateSessions(const std::function<void(std::vector<Session>&)>& change) {
    UpdateFile(SessionStorePath(), MissingFile::created, [&](const std::string& store) {
        std::vector<Session> sessions = OnlyLive(store);
        change(sessions);
        return WriteSessions(sessions);
    });
}

}  // namespace binding
