#include "fuzz/web_server.h"

#include <fastcgi.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "fuzz/scratch.h"
#include "fuzz/target.h"

namespace {

void AppendRecord(std::string& stream, int type, std::string_view content) {
    constexpr std::size_t kLongest = 0xFFFF;
    do {
        const std::string_view part = content.substr(0, kLongest);
        for (const std::size_t byte : {std::size_t{FCGI_VERSION_1}, static_cast<std::size_t>(type),
                                       std::size_t{0}, std::size_t{1}, part.size() >> 8U,
                                       part.size() & 0xFFU, std::size_t{0}, std::size_t{0}}) {
            stream += static_cast<char>(byte);
        }
        stream += part;
        content.remove_prefix(part.size());
    } while (!content.empty());
}

void AppendLength(std::string& content, std::size_t length) {
    if (length < 0x80) {
        content += static_cast<char>(length);
        return;
    }
    for (const unsigned int shift : {24U, 16U, 8U, 0U}) {
        const std::size_t mark = shift == 24U ? 0x80U : 0U;
        content += static_cast<char>(((length >> shift) & 0xFFU) | mark);
    }
}

std::string Stream(const WebRequest& request) {
    std::string variables;
    for (const auto& [name, value] : request.variables) {
        AppendLength(variables, name.size());
        AppendLength(variables, value.size());
        variables += name + value;
    }
    std::string stream;
    AppendRecord(stream, FCGI_BEGIN_REQUEST, std::string_view("\0\1\0\0\0\0\0\0", 8));
    if (!variables.empty()) {
        AppendRecord(stream, FCGI_PARAMS, variables);
    }
    AppendRecord(stream, FCGI_PARAMS, "");
    if (!request.body.empty()) {
        AppendRecord(stream, FCGI_STDIN, request.body);
    }
    AppendRecord(stream, FCGI_STDIN, "");
    return stream;
}

int Connect(const sockaddr_un& address, const std::string& stream) {
    const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    Require(connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0,
            "the responder's socket can be connected to");
    Require(send(connection, stream.data(), stream.size(), MSG_DONTWAIT) ==
                static_cast<ssize_t>(stream.size()),
            "a request fits the socket's buffer");
    (void)shutdown(connection, SHUT_WR);
    return connection;
}

WebAnswer Read(int connection) {
    std::string stream;
    std::array<char, 4096> part{};
    ssize_t count = 0;
    while ((count = read(connection, part.data(), part.size())) > 0) {
        stream.append(part.data(), static_cast<std::size_t>(count));
    }
    (void)close(connection);
    WebAnswer answer;
    std::size_t at = 0;
    while (at < stream.size()) {
        Require(stream.size() - at >= FCGI_HEADER_LEN, "an answer consists of whole records");
        const auto byte = [&](std::size_t offset) {
            return static_cast<unsigned char>(stream[at + offset]);
        };
        const std::size_t length = std::size_t{byte(4)} * 0x100 + byte(5);
        const std::size_t whole = FCGI_HEADER_LEN + length + byte(6);
        Require(stream.size() - at >= whole, "an answer consists of whole records");
        if (byte(1) == FCGI_STDOUT) {
            answer.output += stream.substr(at + FCGI_HEADER_LEN, length);
        } else if (byte(1) == FCGI_END_REQUEST) {
            ++answer.endings;
        }
        at += whole;
    }
    return answer;
}

}  // namespace

// Replaces the function of the system library, so that it does not wait: if no connection is
// waiting now, there will never be one.
int accept(int listener, sockaddr* address, socklen_t* length) {
    const int connection = accept4(listener, address, length, 0);
    if (connection < 0 && errno == EAGAIN) {
        errno = EINVAL;
    }
    return connection;
}

std::vector<WebAnswer> Serve(const std::vector<WebRequest>& requests, int (*responder)()) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = ScratchDirectory() / "socket";
    path.copy(static_cast<char*>(address.sun_path), sizeof(address.sun_path) - 1);
    (void)unlink(path.c_str());
    const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    Require(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0 &&
                listen(listener, static_cast<int>(requests.size())) == 0,
            "there is a socket for the responder", path);
    std::vector<int> connections;
    for (const WebRequest& request : requests) {
        connections.push_back(Connect(address, Stream(request)));
    }
    // This descriptor is always readable, so that waiting for a request never blocks.
    (void)shutdown(listener, SHUT_RD);
    (void)dup2(listener, STDIN_FILENO);
    (void)close(listener);
    (void)responder();
    std::vector<WebAnswer> answers;
    for (const int connection : connections) {
        answers.push_back(Read(connection));
    }
    return answers;
}
