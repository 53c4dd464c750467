#include "conformance/report.h"

#include <array>
#include <cstdio>

namespace conformance {

void Report::Answered(const std::string& call, const std::string& seen, Duration time) {
    const std::scoped_lock lock(mutex);
    ++calls;
    if (time > slowest) {
        slowest = time;
        slowestCall = call;
    }
    Print(call + (seen.empty() ? "" : " -> " + seen) + ", " + TimeText(time));
}

void Report::Note(const std::string& line) {
    const std::scoped_lock lock(mutex);
    Print(line);
}

void Report::Fail(const std::string& call, const std::string& reason) {
    const std::scoped_lock lock(mutex);
    const std::string line = "FAIL " + call + ": " + reason;
    if (findings.insert(line).second) {
        Print(line);
    }
}

int Report::Summarize() {
    const std::scoped_lock lock(mutex);
    Print(Counted(calls, "call") + ", the slowest " + slowestCall + " with " + TimeText(slowest));
    Print(findings.empty() ? "no findings"
                           : Counted(static_cast<std::int64_t>(findings.size()), "finding"));
    return findings.empty() ? 0 : 1;
}

void Report::Print(const std::string& line) {
    // Flushed, so that the output is complete if the binding ends the process.
    (void)std::printf("%s\n", line.c_str());
    (void)std::fflush(stdout);
}

std::string Counted(std::int64_t number, const std::string& noun) {
    return std::to_string(number) + " " + noun + (number == 1 ? "" : "s");
}

std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char character : text) {
        if (character >= ' ' && character <= '~' && character != '"' && character != '\\') {
            quoted += character;
            continue;
        }
        std::array<char, 5> escaped{};
        (void)std::snprintf(escaped.data(), escaped.size(), "\\x%02x",
                            static_cast<unsigned int>(static_cast<unsigned char>(character)));
        quoted += escaped.data();
    }
    return quoted + "\"";
}

std::string TimeText(Duration time) {
    std::array<char, 32> text{};
    (void)std::snprintf(text.data(), text.size(), "%.3f ms",
                        std::chrono::duration<double, std::milli>(time).count());
    return text.data();
}

}  // namespace conformance
