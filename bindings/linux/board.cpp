#include "bindings/linux/board.h"

#include <sys/eventfd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <exception>
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

/// Where the service tells what its sources have told; null for nowhere.
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

BoardLimits LimitsOf(bool isService) {
    BoardLimits limits;
    if (isService) {
        limits.isService = true;
        limits.firstAnswer = kFirstAnswerLimit;
        limits.finish = std::chrono::seconds(1);
    }
    return limits;
}

Board::Board(SourceFactory newFactory, BoardLimits newLimits)
    : factory(std::move(newFactory)),
      limits(newLimits),
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
    finishEnd = std::chrono::steady_clock::now() + limits.finish;
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
    document.End();
    notificationEnd.Reset();
    renewal.Reset();
    dataCall = nullptr;
    sources.clear();
    bus.reset();
    wakeUp.Reset();
}

void Board::GiveUp() noexcept {
    try {
        failed.Note(sources);
        snapshots.Publish(failed.Answers(), {.document = document.Answers(),
                                             .outlook = {kNothingToConnect},
                                             .connection = std::nullopt,
                                             .isComplete = true,
                                             .isWhole = false,
                                             .finish = {}});
    } catch (const std::exception& error) {
        // What the thread has failed for may be missing here, too, such as memory.
        LINUX_LOG(TORU_DBG_ERROR, "the last answers stand until then: %s", error.what());
    }
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
    document.Begin(event.get(), [this](const Settings& before) { OnDocument(before); });
    bus = std::make_unique<Bus>(event.get(), document.GetSettings().silenceSeconds * kSecond);
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

bool Board::IsRequestUnderWay() {
    const bool isSending = dataCall != nullptr && dataCall->IsSending();
    // The sources of new settings may need a moment to know what makes the request.
    return isSending || (renewal.IsArmed() && snapshots.HasRequest());
}

void Board::FinishRequest() {
    using std::chrono::microseconds;
    MakeRequest();
    while (IsRequestUnderWay()) {
        const auto left =
            std::chrono::duration_cast<microseconds>(finishEnd - std::chrono::steady_clock::now());
        if (left <= microseconds(0)) {
            break;
        }
        Turn(static_cast<std::uint64_t>(left.count()));
    }
    renewal.Reset();
    MakeRequest();
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

void Board::OnDocument(const Settings& before) {
    const Settings& settings = document.GetSettings();
    hasPlan = settings.planBytes != 0;
    if (!sources.empty() && !(settings == before)) {
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
    if (!limits.isService || path == nullptr) {
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
        renewal.After(event.get(), static_cast<std::uint64_t>(limits.renewal.count()), 0,
                      [this] { Publish(); });
    }
    MakeSources();
}

void Board::MakeSources() {
    failed.Note(sources);
    dataCall = nullptr;
    sources.clear();
    sources = factory(*this);
    failed.Forget();
    for (const auto& source : sources) {
        source->Begin();
    }
    StartCheck();
    Changed();
}

void Board::StartCheck() {
    check.After(event.get(), document.GetSettings().checkSeconds * kSecond, kSecond, [this] {
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
        if (document.Answers().channels.count(ANS_NOTIFICATION_CHANNEL) == 0) {
            AwaitNotificationEnd(notifications.Publish(
                whole, document.GetSettings(), std::chrono::steady_clock::now(), isComplete));
        }
    };
    snapshots.Publish(
        std::move(device),
        {.document = document.Answers(),
         .outlook = dataCall == nullptr ? DataOutlook{kNothingToConnect} : dataCall->Outlook(),
         .connection = connection,
         .isComplete = isComplete,
         .isWhole = isComplete && !bus->IsOutOfReach(),
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
