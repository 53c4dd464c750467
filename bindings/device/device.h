// The device as a record of what each call answers. The answers are complete platform records, so
// that a call only copies one.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "bindings/device/fault.h"
#include "platform/sysint.h"
#include "platform/sysint_queries.h"
#include "platform/webui.h"

namespace binding {

/// What one call answers.
template <typename T>
struct Answer {
    bool named = false;  ///< whether the device answers the call; if not, ignore the rest
    int error = 0;       ///< code to fail with; 0 when the call works
    T value{};
    std::shared_ptr<Fault> fault = nullptr;  ///< what may happen to the call before it answers
};

/// What a call with an index answers.
template <typename T>
struct IndexedAnswer {
    Answer<T> every;
    std::map<int, Answer<T>> byIndex;
    std::shared_ptr<Fault> fault = nullptr;  ///< what may happen to the call, whatever the index

    const Answer<T>& At(int index) const {
        const auto found = byIndex.find(index);
        return found == byIndex.end() ? every : found->second;
    }
};

/// What a call for a field, an application, a page or a language answers, by its name.
template <typename T>
using NamedAnswers = std::map<std::string, Answer<T>, std::less<>>;

using NamedNumbers = NamedAnswers<std::int32_t>;

/// One group identifier of the SIM.
struct GroupId {
    std::array<std::uint8_t, UINT8_MAX> bytes{};
    std::uint8_t length = 0;
};
static_assert(sizeof(GroupId::bytes) <= SYS_SIM_CARRIER_GID_SIZE);

/// The NR bands in use.
struct Bands {
    std::int32_t band = 0;
    std::int32_t second = 0;
};

/// Manual network selection.
struct MnsInfo {
    std::int32_t allowed = 0;
    std::int32_t selected = 0;
    std::int32_t scanStatus = 0;
};

/// How a call works that has no result.
struct Action {
    /// How long the device needs after the call until the action is complete.
    std::chrono::milliseconds takes{0};
};

/// The status that the data call gets by itself.
struct StatusChange {
    std::int32_t next = 0;
    std::chrono::sys_time<std::chrono::milliseconds> at;
};

struct Device {
    Answer<Action> sdkInitialize{.named = true};
    Answer<Action> cellularDataConnect{.named = true};
    Answer<Action> cellularDataDisconnect{.named = true};
    /// While the data call is being started or ended: what follows getCellularDataConnectionStatus.
    std::optional<StatusChange> statusChange;

#define DEVICE_ANSWER(Type, name, Meaning, field, description) Answer<Type> name;
    SYSINT_QUERIES(DEVICE_ANSWER)
#undef DEVICE_ANSWER
    IndexedAnswer<GroupId> getSIMCarrierGID;
    Answer<MnsInfo> getModemMnsInfo;
    Answer<Bands> getCellular5GBand;
    Answer<std::vector<sys_connected_device_t>> getConnectedDeviceList;
    IndexedAnswer<std::int32_t> getWiFiGuestProfileEnabled;
#define DEVICE_NAMED_ANSWERS(name, Subject, field, description) Answer<NamedNumbers> name;
    SYSINT_NAMED_QUERIES(DEVICE_NAMED_ANSWERS)
#undef DEVICE_NAMED_ANSWERS

    Answer<std::vector<webui_feature_t>> commonFeatures;
    Answer<NamedAnswers<std::vector<webui_feature_t>>> appFeatures;
    Answer<std::vector<webui_configuration_t>> commonConfigurations;
    Answer<NamedAnswers<std::vector<webui_configuration_t>>> appConfigurations;
    Answer<NamedAnswers<webui_uri_data_t>> uriData;
    Answer<NamedAnswers<webui_external_uri_data_t>> externalUriData;
    Answer<webui_i18n_settings_t> i18nSettings;
    Answer<webui_software_update_status_t> softwareUpdateStatus;
    Answer<std::int32_t> softwareInstallationDuration;
    Answer<NamedAnswers<SoftwareUpdateCustomMessages>> softwareUpdateCustomMsgs;

    /// Message bus: the blocks that have been published, by channel.
    NamedAnswers<std::vector<std::byte>> channels;

    /// All faults that the answers have.
    Faults faults;
};

}  // namespace binding
