#include "bindings/simulator/play/player.h"

#include <algorithm>
#include <exception>
#include <nlohmann/json.hpp>

#include "bindings/simulator/edit/device_edit.h"

namespace binding {

namespace {

class Player {
  public:
    Player(const Scenario& newScenario, const std::string& newPath, double newSpeed,
           Clock& newClock, Audience& newAudience)
        : scenario(newScenario),
          path(newPath),
          speed(newSpeed),
          clock(newClock),
          audience(newAudience),
          begin(newClock.Now()) {}

    /// Plays the scenario once. Returns false when it has been stopped.
    bool PlayOnce() {
        for (const auto& [time, instant] : scenario.instants) {
            if (!WaitFor(time)) {
                return false;
            }
            for (const std::string& what : instant.said) {
                audience.Happens(time, what);
            }
            Make(instant);
        }
        if (!WaitFor(scenario.duration)) {
            return false;
        }
        // If the whole process was paused, the rounds that it missed are skipped.
        begin = std::max(begin + ClockTime(scenario.duration), clock.Now());
        return true;
    }

    bool WentWell() const { return wentWell; }

  private:
    Clock::Time ClockTime(Milliseconds time) const {
        return std::chrono::duration_cast<Clock::Time>(
            std::chrono::duration<double, std::milli>(time) / speed);
    }

    Milliseconds ScenarioTime(Clock::Time time) const {
        return std::chrono::duration_cast<Milliseconds>(
            std::chrono::duration<double, std::nano>(time - begin) * speed);
    }

    bool WaitFor(Milliseconds time) {
        const Clock::Time due = begin + ClockTime(time);
        while (true) {
            const Clock::Time now = clock.Now();
            audience.TimePasses(std::min(time, ScenarioTime(now)), scenario.duration);
            if (!clock.WaitUntil(std::min(due, now + std::chrono::seconds(1)))) {
                return false;
            }
            if (clock.Now() >= due) {
                return true;
            }
        }
    }

    void Make(const Instant& instant) {
        if (instant.changes.empty()) {
            return;
        }
        try {
            ChangeDevice(path, [&](nlohmann::ordered_json& document) { instant.Apply(document); });
            problem.clear();
        } catch (const std::exception& error) {
            wentWell = false;
            if (problem != error.what()) {
                problem = error.what();
                audience.GoesWrong(problem);
            }
        }
    }

    const Scenario& scenario;
    const std::string& path;
    const double speed;
    Clock& clock;
    Audience& audience;
    Clock::Time begin;
    std::string problem;
    bool wentWell = true;
};

}  // namespace

bool Play(const Scenario& scenario, const std::string& path, const Pace& pace, Clock& clock,
          Audience& audience) {
    Player player(scenario, path, pace.speed, clock, audience);
    do {
        if (!player.PlayOnce()) {
            return true;
        }
    } while (pace.loops);
    return player.WentWell();
}

}  // namespace binding
