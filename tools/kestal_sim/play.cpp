// The command that plays scenarios on the device's document.
#include <unistd.h>

#include <charconv>
#include <chrono>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>

#include "bindings/simulator/device_file.h"
#include "bindings/simulator/play/player.h"
#include "bindings/simulator/play/scenario.h"
#include "bindings/simulator/play/waiting_clock.h"
#include "tools/kestal_sim/commands.h"
#include "tools/kestal_sim/document.h"

namespace {

using binding::Milliseconds;

/// Reports on the standard error stream what the scenario does.
class Narrator : public binding::Audience {
  public:
    explicit Narrator(bool newIsQuiet) : isQuiet(newIsQuiet) {}

    ~Narrator() override { EraseLine(); }
    Narrator(const Narrator&) = delete;
    Narrator& operator=(const Narrator&) = delete;

    void Happens(Milliseconds time, const std::string& what) override {
        if (!isQuiet) {
            EraseLine();
            (void)std::fprintf(stderr, "%8.1f s  %s\n", Seconds(time), what.c_str());
        }
    }

    void TimePasses(Milliseconds time, Milliseconds duration) override {
        if (!isQuiet && isTerminal) {
            (void)std::fprintf(stderr, "\r\033[K%8.1f s  of %.1f s", Seconds(time),
                               Seconds(duration));
            hasLine = true;
        }
    }

    void GoesWrong(const std::string& what) override {
        EraseLine();
        (void)std::fprintf(stderr, "kestal-sim: %s\n", what.c_str());
    }

  private:
    static double Seconds(Milliseconds time) { return std::chrono::duration<double>(time).count(); }

    void EraseLine() {
        if (hasLine) {
            (void)std::fputs("\r\033[K", stderr);
            hasLine = false;
        }
    }

    const bool isQuiet;
    const bool isTerminal = isatty(STDERR_FILENO) == 1;
    bool hasLine = false;
};

double Speed(const std::string& text) {
    double speed = 0;
    const char* const last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, speed);
    // The condition is negated so that it also refuses "nan": every comparison with nan is false.
    if (error != std::errc() || end != last || !(speed >= 0.01 && speed <= 1e9)) {
        throw UsageError("--speed: '" + text + "' is not a number from 0.01 to 1000000000");
    }
    return speed;
}

void Play(const Arguments& arguments, std::ostream& /*out*/) {
    const binding::Pace pace = {.speed = Speed(arguments.Value("--speed")),
                                .loops = arguments.Given("--loop")};
    const std::string file = FileNamed(arguments.Value("SCENARIO"), "scenarios");
    const binding::Scenario scenario = binding::ReadScenario(file, Contents(file));
    binding::MustBePlayable(scenario, CurrentDocument());
    if (pace.loops && scenario.duration == Milliseconds(0)) {
        throw std::runtime_error(file + ": a scenario that takes no time cannot be repeated");
    }
    if (arguments.Given("--check")) {
        return;
    }
    binding::WaitingClock clock;
    Narrator narrator(arguments.Given("--quiet"));
    if (!binding::Play(scenario, binding::DevicePath(), pace, clock, narrator)) {
        throw std::runtime_error("some changes of the scenario have not been made");
    }
}

}  // namespace

Command PlayCommand() {
    return {
        .names = {"play"},
        .description = "Play a scenario on the device",
        .parameters = {{"SCENARIO", "The scenario's file, or the name of a shipped one: commute"}},
        .run = Play,
        .options = {{.name = "--speed",
                     .description = "Play so many times as fast",
                     .value = "N",
                     .preset = "1"},
                    {"--loop", "Begin again at the end, until Ctrl-C"},
                    {"--quiet", "Print only errors"},
                    {"--check", "Only check whether it can be played"}}};
}
