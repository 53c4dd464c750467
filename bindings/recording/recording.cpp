#include "bindings/recording/recording.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <map>
#include <mutex>
#include <utility>

#include "platform/toru_dbg.h"

namespace recording {

namespace {

struct State {
    // The keep-alive thread and the request loop both call the platform.
    std::recursive_mutex mutex;
    std::map<std::string, std::deque<Answer>> script;
    std::vector<std::string> transcript;
    bool echo = false;
    Director* director = nullptr;
};

thread_local int gPlatformDepth = 0;

/// Built on first use: static objects of the product call the platform before main.
State& TheState() {
    static State state;
    return state;
}

[[noreturn]] void Fault(const std::string& call, const char* reason) {
    (void)std::fprintf(stderr, "recording: %s: %s\n", call.c_str(), reason);
    std::abort();
}

}  // namespace

Answer& Answer::WritesBytes(std::span<const std::byte> bytes) {
    writes.emplace_back(bytes.begin(), bytes.end());
    return *this;
}

Answer& Given(const std::string& call) {
    const std::scoped_lock lock(TheState().mutex);
    return TheState().script[call].emplace_back();
}

void Direct(Director* director) {
    TheState().director = director;
}

bool IsInsidePlatform() {
    return gPlatformDepth > 0;
}

InsidePlatform::InsidePlatform() {
    ++gPlatformDepth;
}

InsidePlatform::~InsidePlatform() {
    --gPlatformDepth;
}

void Reset() {
    const std::scoped_lock lock(TheState().mutex);
    TheState().script.clear();
    TheState().transcript.clear();
}

void Echo() {
    TheState().echo = true;
}

const std::vector<std::string>& Transcript() {
    return TheState().transcript;
}

std::string TranscriptText() {
    return TranscriptText("");
}

std::string TranscriptText(const std::string& prefix) {
    const std::scoped_lock lock(TheState().mutex);
    std::vector<std::string> lines;
    std::copy_if(TheState().transcript.begin(), TheState().transcript.end(),
                 std::back_inserter(lines),
                 [&](const std::string& line) { return line.starts_with(prefix); });
    return Lines(lines);
}

std::string Lines(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

std::string Log(int level, const std::string& text) {
    return "log " + std::to_string(level) + " [KESTAL_CGI]:[" + toru_dbg_get_level_name(level) +
           "]" + text;
}

std::vector<std::string> Failure(const std::string& text) {
    return {"syslog 138 [KESTAL_CGI]:[" + std::string(toru_dbg_get_level_name(TORU_DBG_ERROR)) +
                "]" + text,
            Log(TORU_DBG_ERROR, text)};
}

std::size_t CallCount(const std::string& call) {
    const std::scoped_lock lock(TheState().mutex);
    return static_cast<std::size_t>(
        std::count_if(TheState().transcript.begin(), TheState().transcript.end(),
                      [&](const std::string& line) { return line.starts_with(call + "("); }));
}

void Record(std::string line) {
    const std::scoped_lock lock(TheState().mutex);
    if (TheState().director != nullptr) {
        TheState().director->See(line);
        return;
    }
    if (TheState().echo) {
        (void)std::fprintf(stderr, "%s\n", line.c_str());
    }
    TheState().transcript.push_back(std::move(line));
}

int Play(const std::string& call, const std::string& arguments,
         std::initializer_list<std::span<std::byte>> outputs, int unscripted) {
    const std::scoped_lock lock(TheState().mutex);
    if (Director* const director = TheState().director; director != nullptr) {
        return director->Answer(
            {call, arguments, std::span(outputs.begin(), outputs.size()), unscripted});
    }
    Record(call + "(" + arguments + ")");
    const auto found = TheState().script.find(call);
    if (found == TheState().script.end()) {
        return unscripted;
    }
    const Answer answer = found->second.front();
    if (found->second.size() > 1) {
        found->second.pop_front();
    }
    if (answer.action) {
        answer.action();
    }
    if (answer.writes.size() > outputs.size()) {
        Fault(call, "more outputs scripted than the call has");
    }
    const auto* output = outputs.begin();
    for (const std::vector<std::byte>& bytes : answer.writes) {
        if (bytes.size() > output->size()) {
            Fault(call, "a scripted output is larger than the caller's room");
        }
        std::copy(bytes.begin(), bytes.end(), output->begin());
        ++output;
    }
    return answer.result;
}

void Act(const std::string& call) {
    std::function<void()> action;
    {
        const std::scoped_lock lock(TheState().mutex);
        const auto found = TheState().script.find(call);
        if (TheState().director == nullptr && found != TheState().script.end()) {
            action = found->second.front().action;
        }
    }
    if (action) {
        action();
    }
}

int PlayUnrecorded(const std::string& call) {
    const std::scoped_lock lock(TheState().mutex);
    Director* const director = TheState().director;
    return director == nullptr ? 0 : director->Answer({call, "", {}, 0});
}

}  // namespace recording
