#include "bindings/linux/modem/modem_manager.h"

#include <array>

namespace binding {

ExpectedKinds ModemManagerKinds() {
    using enum ValueKind;
    static constexpr auto kKinds = std::to_array<ExpectedKind>({
        {kModemInterface, "State", integer},
        {kModemInterface, "StateFailedReason", integer},
        {kModemInterface, "UnlockRequired", integer},
        {kModemInterface, "PowerState", integer},
        {kModemInterface, "AccessTechnologies", integer},
        {kModemInterface, "SignalQuality", integerFirst},
        {kModemInterface, "CurrentModes", integerFirst},
        {kModemInterface, "CurrentCapabilities", integer},
        {kModemInterface, "CurrentBands", integers},
        {kModemInterface, "SupportedBands", integers},
        {kModemInterface, "Sim", text},
        {kModemInterface, "SimSlots", texts},
        {kModemInterface, "PrimarySimSlot", integer},
        {kModemInterface, "Bearers", texts},
        {kModem3gppInterface, "RegistrationState", integer},
        {kModem3gppInterface, "OperatorCode", text},
        {kModem3gppInterface, "OperatorName", text},
        {kModem3gppInterface, "NetworkRejection", dictionary},
        {kModem3gppInterface, "NetworkRejection.error", integer},
        {kModem3gppInterface, "Pco", list},
        {kSignalInterface, "Lte", dictionary},
        {kSignalInterface, "Lte.rsrp", number},
        {kSignalInterface, "Lte.snr", number},
        {kSignalInterface, "Nr5g", dictionary},
        {kSignalInterface, "Nr5g.rsrp", number},
        {kSignalInterface, "Nr5g.snr", number},
        {kMessagingInterface, "Messages", texts},
        {kSimInterface, "Imsi", text},
        {kSimInterface, "Gid1", integers},
        {kSimInterface, "Gid2", integers},
        {kSimInterface, "OperatorName", text},
        {kSimInterface, "EsimStatus", integer},
        {kBearerInterface, "Connected", boolean},
        {kBearerInterface, "Suspended", boolean},
        {kBearerInterface, "Interface", text},
        {kBearerInterface, "ConnectionError", texts},
        {kBearerInterface, "Stats", dictionary},
        {kBearerInterface, "Stats.duration", integer},
        {kBearerInterface, "Stats.rx-bytes", integer},
        {kBearerInterface, "Stats.tx-bytes", integer},
        {kSmsInterface, "State", integer},
        {kSmsInterface, "PduType", integer},
        {kSmsInterface, "Number", text},
        {kSmsInterface, "Timestamp", text},
        {kSmsInterface, "Text", text},
    });
    return kKinds;
}

}  // namespace binding
