// The board: a background thread whose one event loop listens to all sources, and the snapshots of
// the device that it publishes. A request takes the newest snapshot and waits for nobody.
#pragma once

#include <systemd/sd-event.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "bindings/device/device.h"
#include "bindings/linux/board_document.h"
#include "bindings/linux/bus/bus.h"
#include "bindings/linux/event.h"
#include "bindings/linux/notification/notifications.h"
#include "bindings/linux/report_server.h"
#include "bindings/linux/source.h"
#include "bindings/linux/traffic.h"

namespace binding {

/// What can start and end the data call. Both are called on the board's thread, and return at once.
class DataCall {
  public:
    virtual ~DataCall() = default;
    /// SYS_SUCCESS, or the code with which a call fails because there is nothing to connect.
    virtual int Readiness() const = 0;
    virtual void Connect() = 0;
    virtual void Disconnect() = 0;
};

using Sources = std::vector<std::unique_ptr<Source>>;
/// Makes the sources of a board; called on its thread, again whenever the settings have changed.
using SourceFactory = std::function<Sources(Board&)>;

class Board {
  public:
    /// Starts the thread.
    explicit Board(SourceFactory newFactory);
    ~Board();
    Board(const Board&) = delete;
    Board& operator=(const Board&) = delete;

    // For all threads.

    /// The newest snapshot. The first one is waited for, until each source has said whether it is
    /// there, but for a second at most.
    std::shared_ptr<const Device> Newest();

    /// Hands an action over to the board's thread. Return SYS_SUCCESS, or the code with which the
    /// action fails because nothing can be connected.
    int StartDataCall() { return Act(&DataCall::Connect); }
    int StopDataCall() { return Act(&DataCall::Disconnect); }

    /// Whether the calling thread is the board's, which must not destroy it.
    bool IsOwnThread() const { return thread.get_id() == std::this_thread::get_id(); }

    /// Runs @p task on the board's thread.
    void Post(std::function<void()> task);

    // For the board's thread.

    sd_event* Event() const { return event.get(); }
    Bus& SystemBus() { return *bus; }
    const Settings& GetSettings() const { return document.settings; }
    const Sources& GetSources() const { return sources; }

    /// Publishes a new snapshot when the events at hand have been processed.
    void Changed();

    /// Says what the data call is started and ended with; null for nothing.
    void SetDataCall(DataCall* newDataCall);

    /// Says which interface carries the data call, or that there is none. Its counters are read
    /// when a request asks for them.
    void SetTraffic(const std::optional<TrafficMeter::Connection>& connection);

  private:
    void Run();
    void GiveUp();
    void Loop();
    void ReadDocument();
    void ServeReports();
    void MakeSources();
    void StartCheck();
    void Publish();
    void AwaitNotificationEnd(const std::optional<Notifications::Time>& end);
    void RunTasks();
    int Act(void (DataCall::*action)());

    SourceFactory factory;

    // Of the board's thread.
    EventPointer event;
    EventSource wakeUp;
    EventSource publishing;
    EventSource check;
    EventSource documentWatch;
    EventSource notificationEnd;
    std::unique_ptr<Bus> bus;
    std::unique_ptr<ReportServer> reportServer;
    BoardDocument document;
    bool documentRead = false;
    std::string documentProblem;
    Sources sources;
    DataCall* dataCall = nullptr;
    Notifications notifications;

    // Shared.
    int wakeUpDescriptor = -1;
    std::mutex mutex;
    std::condition_variable firstPublished;
    bool settled = false;
    bool ending = false;
    std::vector<std::function<void()>> tasks;
    std::shared_ptr<const Device> published;
    TrafficMeter traffic;
    /// SYS_SUCCESS while a data call can be started.
    std::atomic<int> readiness;

    std::thread thread;
};

/// The board of this process. Its thread starts with the first call.
Board& TheBoard();

}  // namespace binding
