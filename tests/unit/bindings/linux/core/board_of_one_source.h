// A board with one source, whose state the test sets.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <new>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include "bindings/linux/board.h"
#include "bindings/posix/files/file_io.h"
#include "tests/support/scratch.h"
#include "tests/unit/bindings/linux/board_tasks.h"

inline constexpr binding::BoardLimits kNoLimits = {.firstAnswer = std::chrono::hours(1),
                                                   .renewal = std::chrono::hours(1),
                                                   .finish = std::chrono::hours(1)};

/// A source whose state the test sets, as a daemon would.
class TestSource : public binding::Source {
  public:
    explicit TestSource(binding::Board& owner) : binding::Source(owner, "position") {}

    void Start() override {
        if (!problem.empty()) {
            throw std::runtime_error(std::exchange(problem, ""));
        }
        if (startsAs != State::unknown) {
            Set(startsAs);
        }
    }
    void Fill(binding::Device& device) const override {
        binding::Tell(device.getGPSStatus, status);
    }
    void Fail(binding::Device& device, int code) const override {
        if (std::exchange(failsToFail, false)) {
            throw std::bad_alloc();
        }
        binding::FailAll(code, device.getGPSStatus);
    }
    nlohmann::json Said() const override { return status; }

    void Set(State state) {
        switch (state) {
            case State::absent:
                return Absent();
            case State::present:
                return Present();
            case State::lost:
                return Lost("it has gone");
            case State::unknown:
                return;
        }
    }

    void Say(int newStatus) {
        status = newStatus;
        Changed();
    }

    inline static State startsAs = State::present;
    /// Why it cannot be started, once.
    inline static std::string problem;
    /// Whether Fail throws, once.
    inline static bool failsToFail = false;
    int status = SYS_GPS_SEARCHING;
};

class BoardOfOneSource : public SimulatedDevice {
  protected:
    BoardOfOneSource() { Document("{}"); }

    void Begin(binding::Source::State startsAs = binding::Source::State::present,
               binding::BoardLimits limits = kNoLimits) {
        TestSource::startsAs = startsAs;
        tasks = std::make_shared<BoardTasks>();
        board = std::make_unique<binding::Board>(
            [this, joined = tasks](binding::Board& owner) {
                joined->Join(owner.Event());
                if (failures > 0) {
                    --failures;
                    throw std::runtime_error("no sources");
                }
                binding::Sources sources;
                auto made = std::make_unique<TestSource>(owner);
                source = made.get();
                ++madeCount;
                sources.push_back(std::move(made));
                return sources;
            },
            limits);
    }

    /// Runs @p task on the board's thread.
    void OnBoard(const std::function<void()>& task) { tasks->Run(task); }

    /// Waits until @p condition holds.
    static void AwaitThat(const std::function<bool()>& condition) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!condition()) {
            ASSERT_LT(std::chrono::steady_clock::now(), end) << "nothing has come";
            std::this_thread::yield();
        }
    }

    /// Waits until a snapshot fulfils @p condition.
    void Await(const std::function<bool(const binding::Device&)>& condition) {
        AwaitThat([&] { return condition(*board->Newest()); });
    }

    void AwaitStatus(int status) {
        Await([status](const binding::Device& now) {
            return now.getGPSStatus.error == 0 && now.getGPSStatus.value == status;
        });
    }

    /// Puts the source into @p state, and waits until the answer has the code @p error.
    void Put(binding::Source::State state, int error) {
        OnBoard([&] { source->Set(state); });
        Await([error](const binding::Device& now) { return now.getGPSStatus.error == error; });
    }

    void BreakLoop() {
        OnBoard([this] {
            const binding::FileDescriptor other(open("/dev/null", O_RDONLY | O_CLOEXEC));
            ASSERT_GE(dup3(other.Number(), sd_event_get_fd(board->Event()), O_CLOEXEC), 0);
        });
    }

    binding::Answer<int> GpsStatus() { return board->Newest()->getGPSStatus; }

    std::shared_ptr<BoardTasks> tasks;
    std::unique_ptr<binding::Board> board;
    TestSource* source = nullptr;
    std::atomic<int> madeCount = 0;
    /// How often the sources cannot be made.
    std::atomic<int> failures = 0;
};

/// Documents with other settings, which also show that they are in force.
class NewSettings : public BoardOfOneSource {
  protected:
    /// Changes the settings; the new source does not tell yet whether it is there.
    void Renew() {
        OnBoard([] { TestSource::startsAs = binding::Source::State::unknown; });
        Document("{\"linux\": {\"apn\": \"internet\"}, \"sys\": {\"getSMSUnreadCount\": 2}}");
        AwaitThat([this] { return madeCount >= 2; });
        // The loop has turns for whatever it would do now.
        for (int turn = 0; turn < 100; ++turn) {
            OnBoard([] {});
        }
    }

    static bool AreInForce(const binding::Device& device) {
        return device.getSMSUnreadCount.value == 2;
    }
};
