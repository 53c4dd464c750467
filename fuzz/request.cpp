// Requests through the whole service on the simulated device, over libfcgi. The input has a line
// for each variable of the request, NAME=VALUE, then an empty line and the body.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "bindings/posix/session/session_store.h"
#include "fuzz/answers.h"
#include "fuzz/scratch.h"
#include "fuzz/target.h"
#include "fuzz/web_server.h"
#include "service/process.h"
#include "service/request_loop.h"

namespace {

constexpr const char* kSession = "5e55104a";
constexpr const char* kUserAgent = "Mozilla/5.0 (fuzz)";

WebRequest RequestOf(const std::string& input) {
    WebRequest request;
    std::string_view rest = input;
    while (!rest.empty()) {
        std::string_view line = TakeUntil(rest, '\n');
        if (line.empty()) {
            break;
        }
        const std::string_view name = TakeUntil(line, '=');
        request.variables.emplace_back(name, line);
    }
    // A socket's buffer holds at least this much, so that sending does not block.
    request.body = rest.substr(0, 50'000);
    return request;
}

WebRequest StatusRequest() {
    return {{{"REQUEST_URI", "/srv/status"}, {"REQUEST_METHOD", "GET"}}, ""};
}

/// The JSON of an answer. Requires status 200 and no other output.
std::string JsonOf(const WebAnswer& answer) {
    constexpr std::string_view kHead = "Status: 200 OK\r\nContent-Type: application/json\r\n\r\n";
    Require(answer.endings == 1, "a request is ended once", answer.output);
    Require(answer.output.starts_with(kHead), "an answer has the status 200", answer.output);
    return answer.output.substr(kHead.size());
}

std::string StatusAfter(const WebRequest& request) {
    return JsonOf(Serve({request, StatusRequest()}, fastcgi_main_loop).back());
}

bool Has(const WebRequest& request, std::string_view name, std::string_view part) {
    return std::any_of(request.variables.begin(), request.variables.end(), [&](const auto& one) {
        return one.first == name && one.second.find(part) != std::string::npos;
    });
}

/// What the status answers while the device is connected and while it is not.
struct Baseline {
    std::string connected;
    std::string disconnected;
};

const Baseline& TheBaseline() {
    static const Baseline baseline = [] {
        gProgramName = "kestal.cgi";
        ConfineSimulator();
        (void)PlaceDevice(ReadFile(KESTAL_FUZZ_DEVICE));
        binding::UpdateSessions([](std::vector<binding::Session>& sessions) {
            sessions.push_back({.digest = binding::DigestOf(kSession),
                                .address = "127.0.0.1",
                                .userAgentDigest = binding::DigestOf(kUserAgent),
                                .opened = binding::Now(),
                                .renewed = binding::Now(),
                                .idleSeconds = 0xFFFFFFFF});
        });
        Baseline made;
        made.disconnected = StatusAfter({{{"REQUEST_URI", "/srv/disconnect"}}, ""});
        made.connected = StatusAfter({{{"REQUEST_URI", "/srv/connect"}}, ""});
        Require(made.connected != made.disconnected, "connecting shows in the status");
        const WebRequest session = {{{"HTTP_COOKIE", std::string("torusess=") + kSession},
                                     {"HTTP_USER_AGENT", kUserAgent},
                                     {"REMOTE_ADDR", "127.0.0.1"}},
                                    ""};
        Require(JsonOf(Serve({session}, fastcgi_main_loop).front()) == R"({"loginStatus":1})",
                "who has a session is logged in");
        return made;
    }();
    return baseline;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static std::string before = TheBaseline().connected;
    const WebRequest request = RequestOf(InputText(data, size));
    const std::vector<WebAnswer> answers = Serve({request, StatusRequest()}, fastcgi_main_loop);

    const std::string json = JsonOf(answers.at(0));
    const auto answer = nlohmann::json::parse(json, nullptr, false);
    Require(answer.is_object() && answer.contains("loginStatus"), "an answer is JSON", json);
    const bool isLoggedIn = answer.at("loginStatus") == 1;
    Require(isLoggedIn || answer.at("loginStatus") == 0, "one is logged in, or not", json);
    Require(!isLoggedIn || (Has(request, "HTTP_COOKIE", kSession) &&
                            Has(request, "HTTP_USER_AGENT", kUserAgent) &&
                            Has(request, "REMOTE_ADDR", "127.0.0.1")),
            "nobody is logged in without a session", json);

    const std::string after = JsonOf(answers.at(1));
    Require(after == TheBaseline().connected || after == TheBaseline().disconnected,
            "the next request is answered as ever", after);
    Require(after == before || Has(request, "REQUEST_URI", "connect"),
            "nothing else connects or disconnects", after);
    before = after;
    return 0;
}
