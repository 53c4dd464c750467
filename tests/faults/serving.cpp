#include "tests/faults/serving.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <sstream>

#include "service/request_loop.h"
#include "tests/support/fake_fcgi.h"

namespace {

constexpr std::size_t kTextsToKeep = 25;

/// Writes a report as text, one line per item: the kind of the item and its value.
std::string Written(const Report& report) {
    std::string text = "cases " + std::to_string(report.cases) + "\nproblems " +
                       std::to_string(report.problems) + "\n";
    for (const std::string& line : report.texts) {
        text += "text " + line + "\n";
    }
    for (const auto& [call, times] : report.calls) {
        text += call + " " + std::to_string(times) + "\n";
    }
    return text;
}

Report Read(const std::string& text) {
    Report report;
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line)) {
        const std::string kind = line.substr(0, line.find(' '));
        const std::string value = line.substr(kind.size() + 1);
        if (kind == "cases") {
            report.cases = std::stol(value);
        } else if (kind == "problems") {
            report.problems = std::stol(value);
        } else if (kind == "text") {
            report.texts.push_back(value);
        } else {
            report.calls[kind] = std::stoi(value);
        }
    }
    return report;
}

void WriteAll(int descriptor, const std::string& text) {
    std::size_t written = 0;
    while (written < text.size()) {
        const ssize_t count = write(descriptor, text.data() + written, text.size() - written);
        if (count <= 0) {
            return;
        }
        written += static_cast<std::size_t>(count);
    }
}

std::string ReadAll(int descriptor) {
    std::string text;
    std::array<char, 4096> piece{};
    ssize_t count = 0;
    while ((count = read(descriptor, piece.data(), piece.size())) > 0) {
        text.append(piece.data(), static_cast<std::size_t>(count));
    }
    return text;
}

}  // namespace

std::vector<Exchange> Serve(Device& device, const std::string& uri,
                            std::vector<std::vector<Fault>> plan, int (*run)()) {
    const std::size_t requests = plan.size();
    fake_fcgi::Reset();
    for (std::size_t i = 0; i < requests; ++i) {
        fake_fcgi::Queue({"REQUEST_METHOD=GET", "REQUEST_URI=" + uri, "REMOTE_ADDR=192.168.1.20",
                          "HTTP_COOKIE=torusess=0123456789abcdef", "HTTP_USER_AGENT=test"});
    }
    device.Plan(std::move(plan));
    recording::Direct(&device);
    (void)(run == nullptr ? fastcgi_main_loop : run)();
    recording::Direct(nullptr);
    std::vector<Exchange> seen = std::move(device.exchanges);
    device.Plan({});
    for (std::size_t i = 0; i < requests && i + 1 < seen.size(); ++i) {
        seen[i + 1].body = fake_fcgi::Answer(i);
    }
    fake_fcgi::Reset();
    return seen;
}

void Report::Problem(const std::string& text) {
    ++problems;
    if (texts.size() < kTextsToKeep) {
        std::string line = text;
        for (char& character : line) {
            character = character == '\n' ? ' ' : character;
        }
        texts.push_back(line);
    }
}

void Report::Note(const Exchange& exchange) {
    for (const auto& [call, times] : exchange.calls) {
        calls[call] = std::max(calls[call], times);
    }
}

void Report::Note(const std::vector<Exchange>& exchanges) {
    for (const Exchange& exchange : exchanges) {
        Note(exchange);
    }
}

void Report::Add(const Report& other) {
    cases += other.cases;
    problems += other.problems;
    for (const std::string& text : other.texts) {
        if (texts.size() < kTextsToKeep) {
            texts.push_back(text);
        }
    }
    for (const auto& [call, times] : other.calls) {
        calls[call] = std::max(calls[call], times);
    }
}

void InFreshProcess(Report& report, const std::string& name,
                    const std::function<void(Report&)>& test,
                    const std::function<bool(int)>& excused) {
    int ends[2] = {-1, -1};
    if (pipe(ends) != 0) {
        report.Problem("cannot make a pipe");
        return;
    }
    (void)std::fflush(nullptr);
    const pid_t child = fork();
    if (child < 0) {
        (void)close(ends[0]);
        (void)close(ends[1]);
        report.Problem(name + ": cannot start a process");
        return;
    }
    if (child == 0) {
        Report own;
        test(own);
        WriteAll(ends[1], Written(own));
        _exit(0);
    }
    (void)close(ends[1]);
    const std::string said = ReadAll(ends[0]);
    report.Add(Read(said));
    (void)close(ends[0]);
    int status = 0;
    (void)waitpid(child, &status, 0);
    if (status != 0 && excused && excused(status)) {
        return;
    }
    if (status != 0) {
        report.Problem(name + ": the process ended with status " + std::to_string(status));
    } else if (said.empty()) {
        report.Problem(name + ": the process ended before the test did");
    }
}
