// What the requests see of the board: its newest snapshot. All of it is for any thread, under one
// lock that nobody holds for long.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

#include "bindings/device/device.h"
#include "bindings/linux/traffic.h"

namespace binding {

enum class DataRequest { connect, disconnect };

/// What requests for the data call meet, as of a snapshot.
struct DataOutlook {
    /// SYS_SUCCESS, or the code with which a request fails because there is nothing to connect.
    int readiness;
    /// The status that is told from the moment at which a request has been accepted.
    sys_data_connection_status_e afterConnect = SYS_DATA_CONNECTION_CONNECTING;
    sys_data_connection_status_e afterDisconnect = SYS_DATA_CONNECTION_DISCONNECTING;

    sys_data_connection_status_e After(DataRequest request) const {
        return request == DataRequest::connect ? afterConnect : afterDisconnect;
    }
};

/// For how long the service waits for the first snapshot: a little less than a second.
extern const std::chrono::milliseconds kFirstAnswerLimit;

class Snapshots {
  public:
    explicit Snapshots(std::chrono::microseconds newFirstAnswerLimit);

    // For requests. The first snapshot is waited for until it is whole, or for the limit.

    struct Taken {
        std::shared_ptr<const Device> device;
        bool hasCounted;  ///< whether the traffic has just been read anew
    };

    /// The newest snapshot.
    Taken Newest();

    /// What has been said of the newest snapshot.
    bool IsWhole();

    /// Accepts a request for the data call and lets the newest snapshot tell so, or returns the
    /// code with which it fails. It replaces one that has not been taken yet: what has been asked
    /// for last counts, and there is never more than one.
    int Ask(DataRequest request);

    // For the board's thread.

    /// Whether a request has been accepted that has not been taken yet.
    bool HasRequest();
    std::optional<DataRequest> TakeRequest();

    struct Publication {
        /// What the owner says in place of the sources.
        const Device& document;
        DataOutlook outlook;
        /// The interface whose counters are those of the data call.
        std::optional<TrafficMeter::Connection> connection;
        /// Whether the device is whole, so that nobody needs to wait for more.
        bool isComplete;
        /// The same, and the system bus, if there is one, answers.
        bool isWhole;
        /// Adds to the device what follows from the rest of it.
        std::function<void(Device& device)> finish;
    };

    /// Publishes @p device, which has what the sources tell.
    void Publish(Device device, const Publication& publication);

  private:
    /// Which answers of the published snapshot are those of sources.
    struct Told {
        bool traffic = false;
        bool dataStatus = false;
        bool slots = false;
    };

    void AwaitFirst(std::unique_lock<std::mutex>& lock);
    void ShowDataStatus(Device& device, DataRequest request) const;

    std::chrono::microseconds firstAnswerLimit;
    std::mutex mutex;
    std::condition_variable settling;
    bool settled = false;
    bool whole = false;
    std::shared_ptr<const Device> published;
    Told told;
    DataOutlook outlook;
    std::optional<DataRequest> waiting;
    TrafficMeter traffic;
};

}  // namespace binding
