// A part of the board that tells something about the device: a daemon, or a part of the kernel.
#pragma once

#include <chrono>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "bindings/device/device.h"

namespace binding {

class Board;

/// Everything of a source runs on the board's thread.
class Source {
  public:
    enum class State {
        unknown,  ///< not known yet, at the start
        absent,   ///< the board has none; its calls answer like a device without this hardware
        present,
        lost,  ///< was present, and is gone or does not answer any more; its calls fail
    };

    Source(Board& newOwner, std::string newName);
    virtual ~Source() = default;
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    const std::string& Name() const { return ownName; }
    State GetState() const { return currentState; }
    /// Why a lost source is lost.
    const std::string& Reason() const { return lossReason; }
    /// When the state began, in seconds since the epoch.
    std::int64_t Since() const { return stateSince; }

    /// Starts the source. One that cannot be started is lost.
    void Begin();

    /// Registers with the loop. It must not block, and must lead to a state other than unknown, at
    /// the latest when something that is awaited has not come in time.
    virtual void Start() = 0;

    /// Asks a source that can hang for a sign of life. It is called every Settings::checkSeconds.
    virtual void Check() {}

    /// Writes what is known of the source whatever its state, because it has told it at another
    /// time. It is called before Fill and Fail.
    virtual void Recall(Device& /*device*/) const {}

    /// Writes what the source tells into the record. It is called while the source is present.
    virtual void Fill(Device& device) const = 0;

    /// Makes the calls that Fill answers fail with @p code. It is called while the source is lost.
    virtual void Fail(Device& device, int code) const = 0;

    /// What the source has told, for people who look for an error.
    virtual nlohmann::json Said() const = 0;

  protected:
    Board& GetBoard() const { return ownerBoard; }

    // Each sets the state and has a new snapshot published. Going and coming back are logged once.
    void Present();
    void Absent();
    void Lost(const std::string& why);

    /// Has a new snapshot published, because Fill would now write something else.
    void Changed();

  private:
    void Found(State newState);
    void SetState(State newState);

    Board& ownerBoard;
    std::string ownName;
    State currentState = State::unknown;
    std::string lossReason;
    std::int64_t stateSince = 0;
};

using Sources = std::vector<std::unique_ptr<Source>>;

/// Text of @p state.
const char* StateName(Source::State state);

/// Makes each of @p answers fail with @p code.
template <typename... Answers>
void FailAll(int code, Answers&... answers) {
    const auto fail = [code](auto& answer) {
        answer.named = true;
        answer.error = code;
    };
    (fail(answers), ...);
}

/// Makes @p answer succeed with @p value.
template <typename T, typename Value>
void Tell(Answer<T>& answer, const Value& value) {
    answer.named = true;
    answer.error = 0;
    answer.value = static_cast<T>(value);
}

}  // namespace binding
