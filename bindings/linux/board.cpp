#include "bindings/linux/board.h"

#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

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

constexpr std::chrono::milliseconds kFirstAnswer{950};
constexpr std::uint64_t kSecond = 1'000'000;

/// All signals are for the threads of the product, but for those that a thread raises by its own
/// fault.
void BlockSignals() {
    sigset_t signals;
    sigfillset(&signals);
    for (const int fault : {SIGILL, SIGABRT, SIGBUS, SIGFPE, SIGSEGV}) {
        sigdelset(&signals, fault);
    }
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

sd_event* NewEvent() {
    sd_event* event = nullptr;
    const int result = sd_event_new(&event);
    if (result < 0) {
        throw std::system_error(-result, std::generic_category(), "event loop");
    }
    return event;
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

Board::Board(SourceFactory newFactory)
    : factory(std::move(newFactory)),
      event(NewEvent()),
      wakeUpDescriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      published(std::make_shared<const Device>(AbsentDevice())),
      readiness(kNothingToConnect) {
    if (wakeUpDescriptor < 0) {
        ThrowSystemError("event loop: eventfd");
    }
    // A thread starts with the mask of the one that starts it.
    sigset_t before;
    pthread_sigmask(SIG_SETMASK, nullptr, &before);
    BlockSignals();
    thread = std::thread([this] { Run(); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

Board::~Board() {
    {
        const std::scoped_lock lock(mutex);
        ending = true;
    }
    (void)eventfd_write(wakeUpDescriptor, 1);
    thread.join();
    (void)close(wakeUpDescriptor);
}

std::shared_ptr<const Device> Board::Newest() {
    std::unique_lock lock(mutex);
    if (!settled) {
        firstPublished.wait_for(lock, kFirstAnswer, [this] { return settled; });
        // The next request does not wait, whatever is missing.
        settled = true;
    }
    if (traffic.Update(std::chrono::steady_clock::now())) {
        const auto& answer = published->getCellularDataConnectionStats;
        if (answer.error == 0 && !document.device.getCellularDataConnectionStats.named) {
            auto fresh = std::make_shared<Device>(*published);
            fresh->getCellularDataConnectionStats.value = traffic.Stats();
            published = std::move(fresh);
        }
    }
    return published;
}

int Board::Act(void (DataCall::*action)()) {
    const int code = readiness;
    if (code == SYS_SUCCESS) {
        Post([this, action] {
            if (dataCall != nullptr) {
                (dataCall->*action)();
            }
        });
    }
    return code;
}

void Board::Post(std::function<void()> task) {
    {
        const std::scoped_lock lock(mutex);
        tasks.push_back(std::move(task));
    }
    (void)eventfd_write(wakeUpDescriptor, 1);
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

void Board::SetTraffic(const std::optional<TrafficMeter::Connection>& connection) {
    const std::scoped_lock lock(mutex);
    if (connection) {
        traffic.Begin(*connection);
    } else {
        traffic.End();
    }
}

void Board::Run() {
    try {
        Loop();
    } catch (const std::exception& error) {
        LINUX_LOG(TORU_DBG_ERROR, "the board's thread has ended: %s", error.what());
        GiveUp();
    }
    reportServer.reset();
    check.Reset();
    publishing.Reset();
    documentWatch.Reset();
    notificationEnd.Reset();
    sources.clear();
    bus.reset();
    wakeUp.Reset();
}

void Board::GiveUp() {
    readiness = kNothingToConnect;
    Device device = AbsentDevice();
    for (const auto& source : sources) {
        source->Fail(device, kSourceLost);
    }
    const std::scoped_lock lock(mutex);
    Overlay(device, document.device);
    published = std::make_shared<const Device>(std::move(device));
}

void Board::Loop() {
    wakeUp.WatchDescriptor(event.get(), wakeUpDescriptor, EPOLLIN,
                           [this](std::uint32_t /*events*/) { RunTasks(); });
    bus = std::make_unique<Bus>(event.get());
    ReadDocument();
    MakeSources();
    ServeReports();
    while (true) {
        const int result = sd_event_run(event.get(), UINT64_MAX);
        if (result < 0) {
            throw std::system_error(-result, std::generic_category(), "event loop");
        }
        const std::scoped_lock lock(mutex);
        if (ending) {
            return;
        }
    }
}

void Board::RunTasks() {
    eventfd_t count = 0;
    (void)eventfd_read(wakeUpDescriptor, &count);
    std::vector<std::function<void()>> run;
    {
        const std::scoped_lock lock(mutex);
        run.swap(tasks);
    }
    for (const auto& task : run) {
        task();
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
        read = ReadBoardDocument(path, ReadFile(path, stamp));
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
    {
        const std::scoped_lock lock(mutex);
        document = std::move(read);
    }
    if (restarts) {
        MakeSources();
    }
    Changed();
}

void Board::ServeReports() {
    // Only the service gets this path: other programs with this binding would take its place.
    const char* const path = std::getenv("KESTAL_SOURCES");
    if (path == nullptr || *path == '\0') {
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

void Board::MakeSources() {
    SetTraffic(std::nullopt);
    dataCall = nullptr;
    sources.clear();
    sources = factory(*this);
    for (const auto& source : sources) {
        try {
            source->Start();
        } catch (const std::exception& error) {
            LINUX_LOG(TORU_DBG_ERROR, "%s: not started: %s", source->Name().c_str(), error.what());
        }
    }
    StartCheck();
    Changed();
}

void Board::StartCheck() {
    check.After(event.get(), document.settings.checkSeconds * kSecond, kSecond, [this] {
        // First, so that a source that throws does not end the checks.
        StartCheck();
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
    Device device = AbsentDevice();
    for (const auto& source : sources) {
        if (source->GetState() == Source::State::present) {
            source->Fill(device);
        } else if (source->GetState() == Source::State::lost) {
            source->Fail(device, kSourceLost);
        }
    }
    readiness = dataCall == nullptr ? static_cast<int>(kNothingToConnect) : dataCall->Readiness();
    const std::scoped_lock lock(mutex);
    if (traffic.IsActive()) {
        traffic.Update(std::chrono::steady_clock::now());
        if (device.getCellularDataConnectionStats.error == 0) {
            device.getCellularDataConnectionStats.value = traffic.Stats();
        }
    }
    Overlay(device, document.device);
    if (document.device.channels.count(ANS_NOTIFICATION_CHANNEL) == 0) {
        AwaitNotificationEnd(notifications.Publish(
            device, document.settings, std::chrono::steady_clock::now(), AllKnown(sources)));
    }
    published = std::make_shared<const Device>(std::move(device));
    if (!settled && AllKnown(sources)) {
        settled = true;
        firstPublished.notify_all();
    }
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
