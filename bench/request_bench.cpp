// The cost of every request apart from its operation: the session check, and log calls below the
// log level, which write nothing.
#include <benchmark/benchmark.h>
#include <fcgiapp.h>

#include <memory>
#include <string>
#include <vector>

#include "bench/allocations.h"
#include "bench/device.h"
#include "framework/log.h"
#include "service/request_loop.h"

namespace {

constexpr const char* kEnvironment[] = {"REQUEST_METHOD=GET",        "REQUEST_URI=/srv/status",
                                        "SCRIPT_NAME=/srv/status",   "QUERY_STRING=",
                                        "CONTENT_LENGTH=0",          "SERVER_PROTOCOL=HTTP/1.1",
                                        "SERVER_SOFTWARE=lighttpd",  "SERVER_NAME=127.0.0.1",
                                        "SERVER_ADDR=127.0.0.1",     "SERVER_PORT=8080",
                                        "REMOTE_ADDR=127.0.0.1",     "REMOTE_PORT=40000",
                                        "GATEWAY_INTERFACE=CGI/1.1", "HTTP_HOST=127.0.0.1:8080",
                                        "HTTP_USER_AGENT=Browser/1"};

void LoginStatus(benchmark::State& state, const char* cookie) {
    const bench::DeviceInSession device;
    std::vector<std::string> variables(std::begin(kEnvironment), std::end(kEnvironment));
    if (cookie != nullptr) {
        variables.push_back(std::string("HTTP_COOKIE=") + cookie);
    }
    std::vector<char*> pointers;
    pointers.reserve(variables.size() + 1);
    for (std::string& variable : variables) {
        pointers.push_back(variable.data());
    }
    pointers.push_back(nullptr);
    FCGX_Request request{};
    request.envp = pointers.data();
    const std::unique_ptr<CgiHelper> helper(CgiHelper::GetInstance());
    const bench::CountAllocations count(state);
    for (auto _ : state) {
        benchmark::DoNotOptimize(GetLoginStatus(helper.get(), request));
    }
}
BENCHMARK_CAPTURE(LoginStatus, without_cookie, nullptr);
BENCHMARK_CAPTURE(LoginStatus, unknown_session, "torusess=0123456789abcdef");

void SuppressedLogLine(benchmark::State& state) {
    KESTAL_SIGNATURE("void SuppressedLogLine(benchmark::State&)");
    int value = 0;
    const bench::CountAllocations count(state);
    for (auto _ : state) {
        KESTAL_END_RETURNING(value);
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK(SuppressedLogLine);

}  // namespace
