#include "bindings/linux/snapshots.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

#include "bindings/device/codes.h"
#include "bindings/linux/absent_device.h"
#include "bindings/linux/board_document.h"

namespace binding {

namespace {

/// Whether @p answer stands, rather than that of the document @p by.
template <typename T>
bool IsTold(const Answer<T>& answer, const Answer<T>& by) {
    return answer.error == 0 && !by.named;
}

}  // namespace

Snapshots::Snapshots(std::chrono::microseconds newFirstAnswerLimit)
    : firstAnswerLimit(newFirstAnswerLimit),
      published(std::make_shared<const Device>(AbsentDevice())),
      outlook{kNothingToConnect} {}

Snapshots::Taken Snapshots::Newest() {
    std::unique_lock lock(mutex);
    AwaitFirst(lock);
    const bool hasCounted = traffic.Update(std::chrono::steady_clock::now()) && told.traffic;
    if (hasCounted) {
        auto fresh = std::make_shared<Device>(*published);
        fresh->getCellularDataConnectionStats.value = traffic.Stats();
        published = std::move(fresh);
    }
    return {.device = published, .hasCounted = hasCounted};
}

bool Snapshots::IsWhole() {
    std::unique_lock lock(mutex);
    AwaitFirst(lock);
    return whole;
}

void Snapshots::AwaitFirst(std::unique_lock<std::mutex>& lock) {
    if (!settled) {
        settling.wait_for(lock, firstAnswerLimit, [this] { return settled; });
        // The next request does not wait, whatever is missing.
        settled = true;
    }
}

int Snapshots::Ask(DataRequest request) {
    std::unique_lock lock(mutex);
    AwaitFirst(lock);
    if (outlook.readiness == SYS_SUCCESS) {
        auto fresh = std::make_shared<Device>(*published);
        ShowDataStatus(*fresh, request);
        published = std::move(fresh);
        waiting = request;
    }
    return outlook.readiness;
}

bool Snapshots::HasRequest() {
    const std::scoped_lock lock(mutex);
    return waiting.has_value();
}

std::optional<DataRequest> Snapshots::TakeRequest() {
    const std::scoped_lock lock(mutex);
    // Until the next snapshot, a further request finds this one under way.
    if (waiting) {
        outlook = {outlook.readiness};
    }
    return std::exchange(waiting, std::nullopt);
}

void Snapshots::Publish(Device device, const Publication& publication) {
    const Device& document = publication.document;
    const std::scoped_lock lock(mutex);
    outlook = publication.outlook;
    if (publication.connection) {
        traffic.Begin(*publication.connection);
    } else {
        traffic.End();
    }
    const auto& stats = device.getCellularDataConnectionStats;
    told = {.traffic = traffic.IsActive() && IsTold(stats, document.getCellularDataConnectionStats),
            .dataStatus = IsTold(device.getCellularDataConnectionStatus,
                                 document.getCellularDataConnectionStatus),
            .slots = IsTold(device.getAllSimSlotsInfo, document.getAllSimSlotsInfo)};
    traffic.Update(std::chrono::steady_clock::now());
    if (told.traffic) {
        device.getCellularDataConnectionStats.value = traffic.Stats();
    }
    Overlay(device, document);
    if (waiting && outlook.readiness == SYS_SUCCESS) {
        ShowDataStatus(device, *waiting);
    }
    if (publication.finish) {
        publication.finish(device);
    }
    published = std::make_shared<const Device>(std::move(device));
    whole = publication.isWhole;
    if (!settled && publication.isComplete) {
        settled = true;
        settling.notify_all();
    }
}

void Snapshots::ShowDataStatus(Device& device, DataRequest request) const {
    const sys_data_connection_status_e status = outlook.After(request);
    if (told.dataStatus) {
        device.getCellularDataConnectionStatus.value = status;
    }
    if (told.slots) {
        auto& all = device.getAllSimSlotsInfo.value;
        for (std::size_t index = 0; index < std::size(all.slots); ++index) {
            if (all.slots[index].active != 0) {
                all.slots[index].dataConnectionStatus = status;
            }
        }
    }
}

}  // namespace binding
