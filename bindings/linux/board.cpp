#include "bindings/linux/board.h"

#include <sys/eventfd.h>
#include <sys/inotify.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>

#include "bindings/device/codes.h"
#include "bindings/linux/absent_device.h"
#include "bindings/linux/log.h"
#include "bindings/posix/files/file_io.h"
#include "platform/notification.h"

namespace binding {

namespace {

constexpr std::uint64_t kSecond = 1'000'000;
constexpr std::chrono::seconds kRestartAfter{1};
constexpr std::chrono::seconds kFinishLimit{1};
/// Nobody waits for the end of another program, as the service manager does for the service's.
constexpr std::chrono::seconds kToolFinishLimit{30};

/// Blocks signals in the calling thread for as long as it lives. All signals are for the threads of
/// the product, but for those that a thread raises by its own fault.
class BlockedSignals {
  public:
    BlockedSignals() {
        sigset_t signals;
        sigfillset(&signals);
        for (const int fault : {SIGILL, SIGABRT, SIGBUS, SIGFPE, SIGSEGV}) {
            sigdelset(&signals, fault);
        }
        pthread_sigmask(SIG_BLOCK, &signals, &before);
    }
    ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;

  private:
    sigset_t before{};
};

sd_event* NewEvent() {
    sd_event* event = nullptr;
    const int result = sd_event_new(&event);
    if (result < 0) {
        throw std::system_error(-result, std::generic_category(), "event loop");
    }
    return event;
}

/// Where the service tells what its sources have told. Only the service gets this path: other
/// programs with this binding would take its place.
const char* ReportPath() {
    const char* const path = std::getenv("KESTAL_SOURCES");
    return path == nullptr || *path == '\0' ? nullptr : path;
}

bool AllKnown(const Sources& sources) {
    for (const auto& source : sources) {
        if (source->GetState() == Source::State::unknown) {
            return false;
        }
    }
    return true;
}

}  // namespace

Board::Board(SourceFactory newFactory, BoardLimits newLimits)
    : factory(std::move(newFactory)),
      renewalLimit(newLimits.renewal),
      isService(ReportPath() != nullptr),
      event(NewEvent()),
      wakeUpDescriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      snapshots(newLimits.firstAnswer) {
    if (wakeUpDescriptor.Number() < 0) {
        ThrowSystemError("event loop: eventfd");
    }
    // A thread starts with the mask of the one that starts it.
    const BlockedSignals blocked;
    thread = std::thread([this] { Run(); });
}

Board::~Board() {
    ending = true;
    WakeUp();
    thread.join();
}

std::shared_ptr<const Device> Board::Newest() {
    const Snapshots::Taken taken = snapshots.Newest();
    if (taken.hasCounted && hasPlan) {
        // Nothing else tells the thread that the plan may be used up.
        hasCounted = true;
        WakeUp();
    }
    return taken.device;
}

int Board::Ask(DataRequest request) {
    const int code = snapshots.Ask(request);
    if (code == SYS_SUCCESS) {
        WakeUp();
    }
    return code;
}

void Board::WakeUp() {
    (void)eventfd_write(wakeUpDescriptor.Number(), 1);
}

void Board::Changed() {
    if (!publishing.IsArmed()) {
        publishing.Defer(event.get(), [this] { Publish(); });
    }
}

void Board::SetDataCall(DataCall* newDataCall) {
    dataCall = newDataCall;
    Changed();
}

void Board::SetTraffic(const std::optional<TrafficMeter::Connection>& newConnection) {
    connection = newConnection;
    Changed();
}

void Board::Run() {
    RunOnce();
    while (!ending) {
        // Whatever has failed, such as to allocate memory, would fail again at once.
        std::this_thread::sleep_for(kRestartAfter);
        startsAnew = true;
        RunOnce();
    }
}

void Board::RunOnce() {
    try {
        if (startsAnew) {
            event.reset(NewEvent());
        }
        Loop();
    } catch (const std::exception& error) {
        if (ending) {
            LINUX_LOG(TORU_DBG_ERROR, "the board's thread has failed at its end: %s", error.what());
        } else {
            LINUX_LOG(TORU_DBG_ERROR, "the board's thread has failed and starts anew: %s",
                      error.what());
            GiveUp();
        }
    }
    reportServer.reset();
    check.Reset();
    publishing.Reset();
    documentWatch.Reset();
    notificationEnd.Reset();
    renewal.Reset();
    dataCall = nullptr;
    sources.clear();
    bus.reset();
    wakeUp.Reset();
}

void Board::GiveUp() noexcept {
    try {
        PublishFailure();
    } catch (const std::exception& error) {
        // What the thread has failed for may be missing here, too, such as memory.
        LINUX_LOG(TORU_DBG_ERROR, "the last answers stand until then: %s", error.what());
    }
}

void Board::NoteFailure() {
    if (sources.empty()) {
        return;
    }
    Device device = AbsentDevice();
    for (const auto& source : sources) {
        source->Recall(device);
        source->Fail(device, kSourceLost);
    }
    failure = std::move(device);
}

void Board::PublishFailure() {
    NoteFailure();
    snapshots.Publish(failure.value_or(AbsentDevice()), {.document = document.device,
                                                         .outlook = {kNothingToConnect},
                                                         .connection = std::nullopt,
                                                         .isComplete = true,
                                                         .finish = {}});
}

void Board::Loop() {
    wakeUp.WatchDescriptor(event.get(), wakeUpDescriptor.Number(), EPOLLIN,
                           [this](std::uint32_t /*events*/) {
                               eventfd_t count = 0;
                               (void)eventfd_read(wakeUpDescriptor.Number(), &count);
                               if (hasCounted.exchange(false)) {
                                   Changed();
                               }
                               MakeRequest();
                           });
    ReadDocument();
    bus = std::make_unique<Bus>(event.get(), document.settings.silenceSeconds * kSecond);
    if (startsAnew) {
        RenewSources();
    } else {
        MakeSources();
    }
    ServeReports();
    while (!ending) {
        Turn(UINT64_MAX);
    }
    FinishRequest();
}

void Board::Turn(std::uint64_t limit) {
    const int result = sd_event_run(event.get(), limit);
    if (result < 0) {
        throw std::system_error(-result, std::generic_category(), "event loop");
    }
    if (renewalProblem) {
        std::rethrow_exception(std::exchange(renewalProblem, nullptr));
    }
}

void Board::FinishRequest() {
    // The sources of new settings may need a moment to know what makes the request.
    TurnWhile(kFinishLimit, [this] { return renewal.IsArmed() && snapshots.HasRequest(); });
    renewal.Reset();
    MakeRequest();
    TurnWhile(isService ? kFinishLimit : kToolFinishLimit,
              [this] { return dataCall != nullptr && dataCall->IsSending(); });
}

void Board::TurnWhile(std::chrono::seconds limit, const std::function<bool()>& condition) {
    constexpr std::uint64_t kStep = kSecond / 10;
    const auto end = std::chrono::steady_clock::now() + limit;
    while (condition() && std::chrono::steady_clock::now() < end) {
        Turn(kStep);
    }
}

void Board::MakeRequest() {
    if (renewal.IsArmed()) {
        // What could make the request is not known yet.
        return;
    }
    const auto request = snapshots.TakeRequest();
    if (!request) {
        return;
    }
    // First, so that the status is put right also if the request throws.
    Changed();
    if (dataCall != nullptr) {
        dataCall->Make(*request);
    }
}

void Board::ReadDocument() {
    const std::string path = BoardDocumentPath();
    const std::filesystem::path file(path);
    if (!documentWatch.IsArmed()) {
        try {
            documentWatch.WatchFolder(event.get(),
                                      file.has_parent_path() ? file.parent_path().c_str() : ".",
                                      IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE,
                                      [this, name = file.filename().string()](const char* changed) {
                                          if (changed != nullptr && name == changed) {
                                              ReadDocument();
                                          }
                                      });
        } catch (const std::system_error& error) {
            LINUX_LOG(TORU_DBG_NOTICE, "%s (changes are not noticed)", error.what());
        }
    }
    BoardDocument read;
    std::string problem;
    try {
        FileStamp stamp;
        read = ReadBoardDocument(path, ReadFile(path, stamp), document.device.faults);
    } catch (const std::exception& error) {
        problem = error.what();
    }
    if (!problem.empty()) {
        if (problem != documentProblem) {
            LINUX_LOG(TORU_DBG_ERROR, "%s (%s)", problem.c_str(),
                      documentRead ? "keeping the last good document" : "no document");
        }
        documentProblem = problem;
        return;
    }
    documentProblem.clear();
    documentRead = true;
    const bool restarts = !sources.empty() && !(read.settings == document.settings);
    document = std::move(read);
    hasPlan = document.settings.planBytes != 0;
    if (restarts) {
        try {
            RenewSources();
        } catch (const std::exception&) {
            // What a callback throws does not end the loop, but there are no sources any more.
            renewalProblem = std::current_exception();
            return;
        }
    }
    Changed();
}

void Board::ServeReports() {
    const char* const path = ReportPath();
    if (path == nullptr) {
        return;
    }
    try {
        reportServer = std::make_unique<ReportServer>(event.get(), path, [this] {
            return ReportOn(sources).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
        });
    } catch (const std::system_error& error) {
        LINUX_LOG(TORU_DBG_ERROR, "reports on sources: %s", error.what());
    }
}

void Board::RenewSources() {
    // Further changes do not make the wait longer.
    if (!renewal.IsArmed()) {
        renewal.After(event.get(), static_cast<std::uint64_t>(renewalLimit.count()), 0,
                      [this] { Publish(); });
    }
    MakeSources();
}

void Board::MakeSources() {
    NoteFailure();
    dataCall = nullptr;
    sources.clear();
    sources = factory(*this);
    failure.reset();
    for (const auto& source : sources) {
        source->Begin();
    }
    StartCheck();
    Changed();
}

void Board::StartCheck() {
    check.After(event.get(), document.settings.checkSeconds * kSecond, kSecond, [this] {
        // First, so that a source that throws does not end the checks.
        StartCheck();
        bus->Check();
        for (const auto& source : sources) {
            try {
                source->Check();
            } catch (const std::exception& error) {
                LINUX_LOG(TORU_DBG_ERROR, "%s: check: %s", source->Name().c_str(), error.what());
            }
        }
    });
}

void Board::Publish() {
    const bool isComplete = AllKnown(sources);
    if (renewal.IsArmed() && !isComplete) {
        return;
    }
    renewal.Reset();
    Device device = AbsentDevice();
    for (const auto& source : sources) {
        source->Recall(device);
        if (source->GetState() == Source::State::lost) {
            source->Fail(device, kSourceLost);
        }
    }
    // Two sources may tell the same, and what one tells stands although the other is lost.
    for (const auto& source : sources) {
        if (source->GetState() == Source::State::present) {
            source->Fill(device);
        }
    }
    const auto addNotifications = [&](Device& whole) {
        if (document.device.channels.count(ANS_NOTIFICATION_CHANNEL) == 0) {
            AwaitNotificationEnd(notifications.Publish(
                whole, document.settings, std::chrono::steady_clock::now(), isComplete));
        }
    };
    snapshots.Publish(
        std::move(device),
        {.document = document.device,
         .outlook = dataCall == nullptr ? DataOutlook{kNothingToConnect} : dataCall->Outlook(),
         .connection = connection,
         .isComplete = isComplete,
         .finish = addNotifications});
    // One that has waited for the sources.
    MakeRequest();
}

void Board::AwaitNotificationEnd(const std::optional<Notifications::Time>& end) {
    if (!end) {
        notificationEnd.Reset();
        return;
    }
    const auto wait = std::chrono::duration_cast<std::chrono::microseconds>(
        *end - std::chrono::steady_clock::now());
    notificationEnd.After(event.get(),
                          static_cast<std::uint64_t>(std::max<std::int64_t>(wait.count(), 0)),
                          kSecond / 2, [this] { Changed(); });
}

}  // namespace binding
