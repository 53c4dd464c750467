#include "bindings/simulator/watch/call_reporter.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <exception>
#include <mutex>
#include <optional>
#include <utility>

#include "bindings/device/seen_call.h"
#include "bindings/posix/files/file_io.h"
#include "bindings/posix/request_title.h"
#include "bindings/simulator/watch/watch_message.h"

namespace binding {

namespace {

/// Reports calls as long as the watcher lives. What it does not read in time is counted and left
/// out: a call never waits for the watcher.
class CallReporter : public CallWatcher {
  public:
    CallReporter() = default;
    CallReporter(const CallReporter&) = delete;
    CallReporter& operator=(const CallReporter&) = delete;
    ~CallReporter() override { Disconnect(); }

    void Look(const std::string& device) {
        if (device != lastDevice) {
            lastDevice = device;
            path = WatchSocketPath(device);
            const std::scoped_lock lock(mutex);
            Disconnect();
        }
        if (theCallWatcher != nullptr) {
            return;
        }
        struct stat status = {};
        if (stat(path.c_str(), &status) != 0 || !S_ISSOCK(status.st_mode)) {
            return;
        }
        // Behind the socket of a watcher that was killed is nobody, until another file is there.
        const auto file = std::make_pair(status.st_ino, status.st_ctim.tv_nsec);
        if (file == refused) {
            return;
        }
        if (Connect()) {
            theCallWatcher = this;
        } else if (errno != EAGAIN) {
            refused = file;
        }
    }

    void Saw(const SeenCall& call) noexcept override {
        std::array<char, 16> digits{};
        std::string_view argument = call.argument.text;
        if (call.argument.number) {
            const auto [end, error] =
                std::to_chars(digits.data(), digits.data() + digits.size(), *call.argument.number);
            argument = {digits.data(), static_cast<std::size_t>(end - digits.data())};
        }
        const bool begins = call.name == "sys_sdkInitialize";
        Send({.kind = WatchKind::call,
              .code = call.code,
              .time = call.time,
              .request = begins ? TakeRequestTitle() : std::string_view(),
              .call = call.name,
              .argument = argument,
              .answer = call.answer,
              .answerSize = call.answer.size()});
    }

    void Waits(const FaultPlan& plan) noexcept override {
        Send({.kind = WatchKind::waits,
              .time = plan.hangs ? kForEver : std::chrono::nanoseconds(plan.delay),
              .call = plan.call});
    }

  private:
    bool Connect() {
        sockaddr_un address{};
        if (path.size() >= sizeof address.sun_path) {
            return false;
        }
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, path.size());
        const std::scoped_lock lock(mutex);
        Disconnect();
        connection = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        // Room for the calls of some requests. The kernel gives less if this is too much.
        constexpr int kRoom = 1 << 20;
        (void)setsockopt(connection, SOL_SOCKET, SO_SNDBUF, &kRoom, sizeof kRoom);
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): as sockets want it
        const auto* const name = reinterpret_cast<const sockaddr*>(&address);
        if (connect(connection, name, sizeof address) != 0) {
            Disconnect();
            return false;
        }
        missed = 0;
        return true;
    }

    /// Needs the lock.
    void Disconnect() {
        CallWatcher* self = this;
        (void)theCallWatcher.compare_exchange_strong(self, nullptr);
        if (connection >= 0) {
            (void)close(connection);
            connection = -1;
        }
    }

    void Send(WatchMessage message) noexcept {
        try {
            const std::scoped_lock lock(mutex);
            message.missed = missed;
            message.program = program_invocation_short_name;
            std::array<std::byte, kMostWatchBytes> room;  // NOLINT(*-member-init): is written next
            const auto bytes = Encoded(message, room);
            if (!bytes.empty() &&
                send(connection, bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL) >= 0) {
                missed = 0;
                return;
            }
            ++missed;
            if (!bytes.empty() && errno != EAGAIN && errno != ENOBUFS && errno != EINTR) {
                Disconnect();
            }
        } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): a lock that fails
        }
    }

    std::string lastDevice;
    std::string path;
    std::optional<std::pair<ino_t, long>> refused;
    std::mutex mutex;  ///< protects what follows
    int connection = -1;
    std::uint64_t missed = 0;
};

}  // namespace

void LookForWatcher(const std::string& device) noexcept {
    try {
        static CallReporter reporter;
        reporter.Look(device);
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): watched later, or not
    }
}

}  // namespace binding
