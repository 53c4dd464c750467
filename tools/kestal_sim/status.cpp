// The command that draws the device.
#include <sys/ioctl.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <iostream>
#include <nlohmann/json.hpp>
#include <ostream>
#include <thread>

#include "bindings/device/device_clock.h"
#include "bindings/device/seen_call.h"
#include "bindings/json/formatted.h"
#include "bindings/posix/files/file_io.h"
#include "bindings/posix/json/json_text.h"
#include "bindings/simulator/device_file.h"
#include "tools/device_status.h"
#include "tools/kestal_sim/commands.h"
#include "tools/kestal_sim/document.h"

namespace {

using json = nlohmann::ordered_json;

/// Time that passes at once: a delayed call answers without a wait, and one that hangs fails.
class ImpatientClock : public binding::DeviceClock {
  public:
    ImpatientClock() { binding::SetDeviceClock(this); }
    ~ImpatientClock() override { binding::SetDeviceClock(nullptr); }
    ImpatientClock(const ImpatientClock&) = delete;
    ImpatientClock& operator=(const ImpatientClock&) = delete;

    Steady Now() override {
        constexpr auto kLongestDelay = std::chrono::seconds(604'800);
        now += kLongestDelay;
        return now;
    }

    Wall TimeOfDay() override {
        return std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
    }

    bool WaitUntil(Steady /*time*/) override { return false; }

  private:
    Steady now;
};

/// Keeps the calls of this command away from `kestal-sim watch`.
class Unwatched : public binding::CallWatcher {
  public:
    Unwatched() { binding::theCallWatcher = this; }
    ~Unwatched() override { binding::theCallWatcher = nullptr; }
    Unwatched(const Unwatched&) = delete;
    Unwatched& operator=(const Unwatched&) = delete;

    void Saw(const binding::SeenCall& /*call*/) noexcept override {}
    void Waits(const binding::FaultPlan& /*plan*/) noexcept override {}
};

using Rows = std::vector<std::pair<std::string, std::string>>;

/// Adds what has been done to the calls below @p path so that they fail, are slow or hang.
void AddFaults(const json& value, const std::string& path, Rows& rows) {
    if (!value.is_object()) {
        return;
    }
    if (value.contains("healed")) {
        json fault = value;
        fault.erase("healed");
        fault.erase("since");
        rows.emplace_back(path, binding::Formatted(fault));
        return;
    }
    for (const auto& [name, member] : value.items()) {
        std::string below = path;
        below.append(path.empty() ? "" : ".").append(name);
        AddFaults(member, below, rows);
    }
}

/// The device as text: what its calls answer, and what the document makes of them on purpose.
class Drawing {
  public:
    std::string Draw() {
        const binding::FileStamp stamp = binding::StampOf(binding::DevicePath());
        if (stamp != drawn || faults.empty()) {
            drawn = stamp;
            Rows rows;
            AddFaults(CurrentDocument(), "", rows);
            faults = StatusSection("Faults", rows) + "\n";
        }
        const ImpatientClock clock;
        const Unwatched unwatched;
        return DeviceStatus(binding::kBindingCode) + faults.substr(0, faults.size() - 1);
    }

  private:
    binding::FileStamp drawn;
    std::string faults;  ///< with a line feed behind it, so that it is not empty once it is known
};

extern "C" void EndFollowing(int /*signo*/) {
    _exit(0);
}

/// @p text as it replaces the last picture on a terminal. What does not fit into the window is cut,
/// because it would scroll.
std::string Picture(const std::string& text) {
    winsize window{};
    const bool isKnown = ioctl(STDOUT_FILENO, TIOCGWINSZ, &window) == 0 && window.ws_row > 1;
    const std::size_t most = isKnown ? window.ws_row - 1U : 1000;
    // To the upper left corner; long lines are not to wrap.
    std::string picture = "\033[H\033[?7l";
    std::size_t lines = 0;
    std::size_t begin = 0;
    for (; begin < text.size() && lines < most; ++lines) {
        const std::size_t end = text.find('\n', begin);
        picture += text.substr(begin, end - begin) + "\033[K\n";
        begin = end + 1;
    }
    if (begin < text.size()) {
        picture += "... the window is too low for the rest\033[K";
    }
    return picture + "\033[J\033[?7h";
}

void Follow(Drawing& drawing, std::ostream& out) {
    // Often enough for people.
    constexpr auto kInterval = std::chrono::milliseconds(200);
    for (const int signo : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        (void)std::signal(signo, EndFollowing);
    }
    const bool isTerminal = isatty(STDOUT_FILENO) == 1;
    std::string last;
    if (isTerminal) {
        out << "\033[2J";
    }
    while (out) {
        const std::string text = drawing.Draw();
        const std::string shown = isTerminal ? Picture(text) : text;
        if (shown != last) {
            out << (isTerminal || last.empty() ? "" : "\n") << shown;
            out.flush();
            last = shown;
        }
        std::this_thread::sleep_for(kInterval);
    }
}

void Status(const Arguments& arguments, std::ostream& out) {
    Drawing drawing;
    if (arguments.Given("--follow")) {
        Follow(drawing, out);
    } else {
        out << drawing.Draw();
    }
}

}  // namespace

Command StatusCommand() {
    return {.names = {"status"},
            .description = "Draw the device",
            .run = Status,
            .options = {{.name = "--follow",
                         .description = "Draw it again when it changes, until Ctrl-C"}}};
}
