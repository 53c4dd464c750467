#include <algorithm>
#include <iterator>

#include "bindings/linux/modem/modem.h"
#include "bindings/linux/source.h"
#include "bindings/linux/text_field.h"

namespace binding {

namespace {

/// A SIM without group identifier answers like one whose file is empty (3GPP TS 31.102, 4.2.10): a
/// caller that reads the first byte must not find that of the SIM before.
constexpr std::uint8_t kNoGroup = 0xFF;

template <typename T, typename Value>
void TellIfTold(Answer<T>& answer, const std::optional<Value>& value) {
    if (value) {
        Tell(answer, *value);
    }
}

sys_cellular_service_stats_t ServiceStats(const Modem& modem) {
    sys_cellular_service_stats_t stats{};
    stats.technology = modem.technology.value_or(SYS_TECHNOLOGY_NONE);
    stats.roaming = modem.roaming.value_or(SYS_ROAMING_NONE);
    stats.signalBars = modem.signalBars.value_or(0);
    stats.sinr = modem.signalToNoise.value_or(0);
    stats.snr = modem.signalToNoise.value_or(0);
    stats.pci = modem.physicalCell.value_or(0);
    PutText(stats.networkName, modem.networkName.value_or(""));
    PutText(stats.networkId, modem.networkId.value_or(""));
    if (modem.fiveGType) {
        stats.fiveGType = *modem.fiveGType;
    }
    return stats;
}

void FillNetwork(const Modem& modem, Device& device) {
    Tell(device.getCellularServiceStats, ServiceStats(modem));
    TellIfTold(device.getCellularServiceStatus, modem.serviceStatus);
    TellIfTold(device.getRadioEnabled, modem.radioEnabled);
    TellIfTold(device.getEnabledRadioTechnologies, modem.enabledTechnologies);
    Tell(device.getSIMNetworkRejectCode, modem.rejectCode.value_or(0));
    Tell(device.getCellular3GBand, modem.umtsBand.value_or(0));
    Tell(device.getCellularBand, modem.lteBand.value_or(0));
    Tell(device.getCellular5GBand, Bands{modem.nrBand.value_or(0), 0});
    Tell(device.getCellular5GMode, modem.fiveGMode.value_or(SYS_WAN_5G_NONE));
    Tell(device.getCABandWidth, modem.lteBandwidth.value_or(0));
    Tell(device.get5GBandWidth, modem.nrBandwidth.value_or(0));
}

/// A SIM that is not in use is ready to be used, as far as anybody knows: ModemManager tells its
/// lock only once its slot has been chosen, and there is no number for a SIM of an unknown state.
sys_sim_status_e SlotStatus(const Modem& modem, bool active, const SimSlot& slot) {
    if (active && modem.simStatus) {
        return *modem.simStatus;
    }
    return slot.hasSim ? SYS_SIM_READY : SYS_SIM_NOT_FOUND;
}

/// The SDK's record has two slots; ModemManager's others are left out.
sys_all_sim_slots_t AllSlots(const Modem& modem) {
    sys_all_sim_slots_t all{};
    const std::size_t count = std::min(modem.slots.size(), std::size(all.slots));
    all.count = static_cast<std::int32_t>(count);
    for (std::size_t index = 0; index < count; ++index) {
        const SimSlot& from = modem.slots[index];
        sys_sim_slot_t& slot = all.slots[index];
        const bool active = static_cast<int>(index) + 1 == modem.activeSlot;
        slot.active = active ? 1 : 0;
        slot.simStatus = SlotStatus(modem, active, from);
        PutText(slot.networkName,
                active ? modem.networkName.value_or(from.operatorName) : from.operatorName);
        if (active) {
            slot.serviceStatus = modem.serviceStatus.value_or(SYS_SERVICE_NONE);
            slot.dataConnectionStatus =
                modem.dataConnectionStatus.value_or(SYS_DATA_CONNECTION_READY);
        }
    }
    return all;
}

GroupId NoGroup() {
    GroupId group;
    group.bytes.front() = kNoGroup;
    group.length = 1;
    return group;
}

void FillSim(const Modem& modem, Device& device) {
    TellIfTold(device.getSIMStatus, modem.simStatus);
    sys_network_sim_lock_t lock{};
    lock.carrierBlocked = modem.carrierBlocked.value_or(false) ? 1 : 0;
    Tell(device.getNetworkSIMLockStatus, lock);
    sys_subscriber_info_t subscriber{};
    PutText(subscriber.identity, modem.imsi.value_or(""));
    Tell(device.getSubscriberInfo, subscriber);
    Tell(device.getSIMCarrierGID.byIndex[1], modem.firstGroupId.value_or(NoGroup()));
    Tell(device.getSIMCarrierGID.byIndex[2], modem.secondGroupId.value_or(NoGroup()));
    Tell(device.getActiveSimSlot, modem.activeSlot);
    Tell(device.getNumSims, std::count_if(modem.slots.begin(), modem.slots.end(),
                                          [](const SimSlot& slot) { return slot.hasSim; }));
    Tell(device.getAllSimSlotsInfo, AllSlots(modem));
    Tell(device.getMultiSimEnabled, modem.slots.size() > 1 ? 1 : 0);
}

void FillDataCall(const Modem& modem, Device& device) {
    TellIfTold(device.getCellularDataConnectionStatus, modem.dataConnectionStatus);
    TellIfTold(device.getCellularDataAccountStatus, modem.accountStatus);
    sys_cellular_data_connection_stats_t stats{};
    if (modem.bearerStats) {
        stats.duration = modem.bearerStats->seconds;
        stats.bytesReceived1 = modem.bearerStats->received;
        stats.bytesTransmitted1 = modem.bearerStats->transmitted;
    }
    Tell(device.getCellularDataConnectionStats, stats);
}

}  // namespace

void FillModem(const Modem& modem, Device& device) {
    FillNetwork(modem, device);
    FillSim(modem, device);
    FillDataCall(modem, device);
}

void FailModem(Device& device, int code) {
    FailAll(code, device.getCellularServiceStats, device.getCellularServiceStatus,
            device.getRadioEnabled, device.getEnabledRadioTechnologies,
            device.getSIMNetworkRejectCode, device.getCellular3GBand, device.getCellularBand,
            device.getCellular5GBand, device.getCellular5GMode, device.getCABandWidth,
            device.get5GBandWidth, device.getSIMStatus, device.getNetworkSIMLockStatus,
            device.getSubscriberInfo, device.getSIMCarrierGID.every, device.getActiveSimSlot,
            device.getNumSims, device.getAllSimSlotsInfo, device.getCellularDataConnectionStatus,
            device.getCellularDataConnectionStats, device.getCellularDataAccountStatus);
}

}  // namespace binding
