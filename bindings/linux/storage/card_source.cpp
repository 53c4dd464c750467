#include "bindings/linux/storage/card_source.h"

#include <fcntl.h>
#include <sys/epoll.h>
#include <unistd.h>

#include <array>
#include <nlohmann/json.hpp>
#include <string>
#include <system_error>

#include "bindings/linux/board.h"
#include "bindings/linux/log.h"

namespace binding {

namespace {

/// The table of mounts of a machine with some thousands of them.
constexpr std::size_t kLargestTable = 1'000'000;

/// All of the file, from its beginning.
std::string ReadFromStart(int descriptor) {
    std::string text;
    std::array<char, 16384> buffer{};
    while (text.size() < kLargestTable) {
        const ssize_t size =
            pread(descriptor, buffer.data(), buffer.size(), static_cast<off_t>(text.size()));
        if (size <= 0) {
            break;
        }
        text.append(buffer.data(), static_cast<std::size_t>(size));
    }
    return text;
}

}  // namespace

void CardSource::Start() {
    try {
        events = std::make_unique<Uevents>(GetBoard().Event(), "block", [this] { Read(); });
        mounts.emplace(open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC));
        if (mounts->Number() < 0) {
            ThrowSystemError("/proc/self/mountinfo");
        }
        mountChanges.WatchDescriptor(GetBoard().Event(), mounts->Number(), EPOLLPRI,
                                     [this](std::uint32_t /*events*/) { Read(); });
    } catch (const std::system_error& error) {
        LINUX_LOG(TORU_DBG_NOTICE, "%s: %s (changes are noticed late)", Name().c_str(),
                  error.what());
    }
    Read();
}

void CardSource::Read() {
    card = FindMemoryCard("/sys/block", mounts ? ReadFromStart(mounts->Number()) : std::string(),
                          GetBoard().GetSettings().memoryCard);
    if (!card || card->mountPoint.empty()) {
        // A card that nobody has mounted is of no use, as one that is not there.
        if (GetState() != State::absent) {
            Absent();
        }
        return;
    }
    const auto told = SpaceAt(card->mountPoint);
    if (!told) {
        Lost(card->mountPoint.string() + ": its space cannot be read");
        return;
    }
    const bool same = told->totalCapacity == space.totalCapacity &&
                      told->freeSpace == space.freeSpace && GetState() == State::present;
    space = *told;
    if (!same) {
        Present();
    }
}

void CardSource::Fill(Device& device) const {
    Tell(device.getSDCardInfo, space);
}

void CardSource::Fail(Device& device, int code) const {
    FailAll(code, device.getSDCardInfo);
}

nlohmann::json CardSource::Said() const {
    if (!card) {
        return nlohmann::json::object();
    }
    return {{"device", card->name},
            {"mountPoint", card->mountPoint.string()},
            {"total", space.totalCapacity},
            {"free", space.freeSpace}};
}

}  // namespace binding
