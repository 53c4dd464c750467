// The board: a background thread whose one event loop listens to all sources, and the snapshots of
// the device that it publishes. A request takes the newest snapshot and waits for nobody.
#pragma once

#include <systemd/sd-event.h>

#include <atomic>
#include <chrono>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "bindings/device/device.h"
#include "bindings/linux/bus/bus.h"
#include "bindings/linux/event.h"
#include "bindings/linux/failed_answers.h"
#include "bindings/linux/notification/notifications.h"
#include "bindings/linux/report_server.h"
#include "bindings/linux/snapshots.h"
#include "bindings/linux/source.h"
#include "bindings/linux/traffic.h"
#include "bindings/linux/watched_document.h"
#include "bindings/posix/files/file_io.h"

namespace binding {

/// What can start and end the data call. All is called on the board's thread, and returns at once.
class DataCall {
  public:
    virtual ~DataCall() = default;
    virtual DataOutlook Outlook() const = 0;
    virtual void Make(DataRequest request) = 0;
    /// Whether something has been sent that has not been answered.
    virtual bool IsSending() const = 0;
};

/// Makes the sources of a board; called on its thread, again whenever the settings have changed.
using SourceFactory = std::function<Sources(Board&)>;

/// What a board is to its program, and for how long it waits.
struct BoardLimits {
    /// Whether the program is the service, which is there all the time: only the service remembers
    /// what the modem has told, and tells what its sources have told. Others have a board for a
    /// short time.
    bool isService = false;
    /// For sources that have not said whether they are there, before the first snapshot is
    /// answered. A program other than the service often asks once, so that its first answer should
    /// be the right one.
    std::chrono::microseconds firstAnswer = std::chrono::seconds(30);
    /// The same after a change of the settings, while what the sources before have told stands.
    std::chrono::microseconds renewal = std::chrono::seconds(1);
    /// At the end, for all that a request which has been accepted needs. Nobody waits for the end
    /// of a tool, as the service manager does for the service's.
    std::chrono::microseconds finish = std::chrono::seconds(30);
};

/// The limits in the service, and in other programs.
BoardLimits LimitsOf(bool isService);

class Board {
  public:
    /// Starts the thread.
    explicit Board(SourceFactory newFactory, BoardLimits newLimits = {});
    /// A request that has been accepted is made before, and its answer awaited, for the limit: a
    /// daemon may refuse what has been asked by somebody who is gone, and a modem that must be
    /// enabled first is connected only then.
    ~Board();
    Board(const Board&) = delete;
    Board& operator=(const Board&) = delete;

    // For all threads. The first snapshot is waited for by each function that needs it, until each
    // source has said whether it is there, but for the limit at most.

    /// The newest snapshot.
    std::shared_ptr<const Device> Newest();

    /// Whether the newest snapshot has all that there is: each source has said whether it is there,
    /// and the system bus, if there is one, answers.
    bool IsWhole() { return snapshots.IsWhole(); }

    /// Hand a request over to the board's thread. Return SYS_SUCCESS, or the code with which the
    /// request fails because nothing can be connected.
    int StartDataCall() { return Ask(DataRequest::connect); }
    int StopDataCall() { return Ask(DataRequest::disconnect); }

    /// Whether the calling thread is the board's, which must not destroy it.
    bool IsOwnThread() const { return thread.get_id() == std::this_thread::get_id(); }

    // For the board's thread.

    /// Whether this is the board of the service.
    bool IsService() const { return limits.isService; }

    sd_event* Event() const { return event.get(); }
    Bus& SystemBus() { return *bus; }
    const Settings& GetSettings() const { return document.GetSettings(); }
    const Sources& GetSources() const { return sources; }

    /// Publishes a new snapshot when the events at hand have been processed.
    void Changed();

    /// Says what the data call is started and ended with; null for nothing.
    void SetDataCall(DataCall* newDataCall);

    /// Says which interface carries the data call, or that there is none. The next snapshot has its
    /// counters, which are read again when a request asks for that snapshot.
    void SetTraffic(const std::optional<TrafficMeter::Connection>& newConnection);
    /// What has been said of it last, also by sources of settings before.
    const std::optional<TrafficMeter::Connection>& Traffic() const { return connection; }

  private:
    int Ask(DataRequest request);
    void WakeUp();

    void Run();
    void RunOnce();
    void GiveUp() noexcept;
    void Loop();
    void Turn(std::uint64_t limit);
    bool IsRequestUnderWay();
    void FinishRequest();
    void OnDocument(const Settings& before);
    void ServeReports();
    void MakeSources();
    void RenewSources();
    void StartCheck();
    void Publish();
    void AwaitNotificationEnd(const std::optional<Notifications::Time>& end);
    void MakeRequest();

    SourceFactory factory;
    BoardLimits limits;

    // Of the board's thread.
    EventPointer event;
    EventSource wakeUp;
    EventSource publishing;
    EventSource check;
    EventSource notificationEnd;
    /// Armed while the snapshot of the sources before stands.
    EventSource renewal;
    std::unique_ptr<Bus> bus;
    std::unique_ptr<ReportServer> reportServer;
    WatchedDocument document;
    bool startsAnew = false;
    Sources sources;
    /// Why the sources of new settings cannot be made, which ends the loop.
    std::exception_ptr renewalProblem;
    FailedAnswers failed;
    DataCall* dataCall = nullptr;
    std::optional<TrafficMeter::Connection> connection;
    Notifications notifications;

    // Shared.
    FileDescriptor wakeUpDescriptor;
    std::atomic<bool> ending = false;
    /// Until when a request may be finished; set before ending is.
    std::chrono::steady_clock::time_point finishEnd;
    /// Whether notifications depend on the traffic.
    std::atomic<bool> hasPlan = false;
    std::atomic<bool> hasCounted = false;
    Snapshots snapshots;

    std::thread thread;
};

/// The board of this process. Its thread starts with the first call.
Board& TheBoard();

}  // namespace binding
