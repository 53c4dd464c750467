// A board whose sources have their daemons in the test.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "bindings/linux/board.h"
#include "bindings/linux/sources.h"
#include "tests/support/scratch.h"
#include "tests/unit/bindings/linux/board_tasks.h"
#include "tests/unit/bindings/linux/services/fakes.h"

class ServiceTest : public SimulatedDevice {
  protected:
    ServiceTest() {
        // The machine's own daemons are not those of the test.
        environment.Set("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + (directory / "bus").string());
        environment.Set("STATE_DIRECTORY", directory);
        settings = {{"hostapdDirectory", directory / "run" / "hostapd"},
                    {"leases", directory / "leases"},
                    {"ethernet", {"no-port"}},
                    {"gpsdPort", "1"},
                    {"powerSupplies", directory / "power"},
                    {"updateSocket", directory / "run" / "progress"},
                    // On a machine that does much else, a daemon of the test may take several.
                    {"silenceSeconds", 30},
                    {"checkSeconds", 1}};
    }

    void Begin() {
        Document(nlohmann::json{{"linux", settings}}.dump());
        board = std::make_unique<binding::Board>(
            [this](binding::Board& owner) {
                tasks.Join(owner.Event());
                return binding::MakeSources(owner);
            },
            limits);
        // The first snapshot waits for what the daemons answer.
        (void)Await(std::async(std::launch::async, [this] { return board->Newest(); }));
    }

    /// Serves the daemons until @p result is there.
    template <typename Result>
    Result Await(std::future<Result> result) {
        return AwaitOrAbort(std::move(result), [this] { Serve(); });
    }

    void Serve() {
        for (const auto& serve : daemons) {
            serve();
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }

    /// Serves the daemons until @p condition holds. Returns false when it has not after a minute.
    bool WaitFor(const std::function<bool(const binding::Device&)>& condition) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (std::chrono::steady_clock::now() < end) {
            Serve();
            if (condition(*board->Newest())) {
                return true;
            }
        }
        return false;
    }

    std::unique_ptr<FakeHostapd> Hostapd(const std::string& interface = "wlan0") {
        auto hostapd = std::make_unique<FakeHostapd>(directory / "run" / "hostapd" / interface);
        daemons.emplace_back([daemon = hostapd.get()] { daemon->Serve(); });
        return hostapd;
    }

    void Use(FakeServer& server) {
        daemons.emplace_back([&server] { server.Serve(); });
    }

    /// What the source @p name has told.
    nlohmann::json Said(const std::string& name) {
        nlohmann::json said;
        tasks.Run([&] {
            for (const auto& source : board->GetSources()) {
                if (source->Name() == name) {
                    said = source->Said();
                }
            }
        });
        return said;
    }

    static std::vector<int> Kinds(const binding::Device& now) {
        std::vector<int> kinds;
        for (const auto& client : now.getConnectedDeviceList.value) {
            kinds.push_back(client.connectionKind);
        }
        return kinds;
    }

    /// The first answer has whatever the daemons tell. Nobody answers at the end of a test.
    binding::BoardLimits limits = {.firstAnswer = std::chrono::hours(1),
                                   .finish = std::chrono::microseconds(0)};
    nlohmann::json settings;
    std::vector<std::function<void()>> daemons;
    BoardTasks tasks;
    std::unique_ptr<binding::Board> board;
};
