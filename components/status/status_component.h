#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "components/band/band_combination.h"
#include "components/status/cellular/subscriber_cache.h"
#include "framework/answer_tree.h"
#include "framework/page_component.h"
#include "framework/page_error.h"

/// Gathers the data set for the status bar of the web UI. One object serves all requests: it reads
/// the carrier's switches once, when it is constructed, and the data again for each request.
class StatusComponent : public PageComponent {
  public:
    StatusComponent();
    ~StatusComponent() override;
    StatusComponent(const StatusComponent&) = delete;
    StatusComponent& operator=(const StatusComponent&) = delete;

    /// Reads which functions the carrier and the device support. A switch that cannot be read
    /// counts as off, unless the failed call has written a value.
    void GetCapabilities();

    /// Writes the status data set to "statusData" of @p out: one object without nested objects. A
    /// value that cannot be read is logged, and either left out or replaced by its fallback. Always
    /// returns PAGE_ERROR_NONE.
    PageError GetData(CTPP::CDT& out);

    // The field groups. Each writes its "statusBar..." keys into the status data set and logs what
    // it cannot read.

    /// The cellular connection: network, technology, signal, bands, traffic. Writes nothing if one
    /// of its first five readings, those of service, connection and radio, fails.
    void GetInternetStatus(CTPP::CDT& statusData);
    /// Manual network selection, as the platform's numbers.
    void GetMnsStatus(CTPP::CDT& statusData);
    /// The SIM of a device with one SIM.
    void GetSimStatus(CTPP::CDT& statusData);
    /// Both slots of a device with two SIMs; remembers which is in use.
    void GetDualSimStatus(CTPP::CDT& statusData);
    /// Whether the user has switched cellular data on, 1 or 0.
    void GetMobileDataEnabled(CTPP::CDT& statusData);
    /// "connected", "enabled" or "disabled". If the port cannot be read, it counts as disabled; if
    /// only its link cannot be read, as enabled.
    void GetEthernetPortEnabled(CTPP::CDT& statusData);
    /// The platform's number for the state of the firmware installation; -1 on a device that has no
    /// second partition to install to.
    void GetFotaInstallStatus(CTPP::CDT& statusData);
    void GetGpsStatus(CTPP::CDT& statusData);
    void GetSmsStatus(CTPP::CDT& statusData);
    /// Memory card and file sharing; space in the platform's unit.
    void GetSmbStatus(CTPP::CDT& statusData);
    /// How many clients are connected, by kind.
    void GetRouterStatus(CTPP::CDT& statusData);
    void GetWifiStatus(CTPP::CDT& statusData);
    /// 1 when guest Wi-Fi is on in either frequency band, else 0.
    void GetGuestWifiStatus(CTPP::CDT& statusData);
    void GetBatteryStatus(CTPP::CDT& statusData);
    /// "1" when any notification is active, else "0".
    void GetNotificationFlagStatus(CTPP::CDT& statusData);
    /// State of the software update, and the carrier's messages in the user's language if the page
    /// shows them in that state.
    void GetSoftwareUpdateStatus(CTPP::CDT& statusData);

    bool IsGPSSupported() const { return isGPSSupported; }
    /// Sharing of files from the memory card.
    bool IsSMBSupported() const { return isSMBSupported; }
    /// Mobile-terminated SMS.
    bool IsMTSMSSupported() const { return isMTSMSSupported; }
    bool IsWifiSupported() const { return isWifiSupported; }
    bool IsGuestWifiSupported() const { return isGuestWifiSupported; }
    /// Account status in protocol configuration options.
    bool IsPCOSupported() const { return isPCOSupported; }
    /// NUA software-update agent.
    bool IsNUASupported() const { return isNUASupported; }
    /// OMA-DM firmware update.
    bool IsOMADMSupported() const { return isOMADMSupported; }
    /// The device runs with more than one SIM.
    bool IsDualSIMSupported() const { return isDualSIMSupported; }

  private:
    static constexpr std::uint32_t kSecondSimSlot = 2;

    /// Whether the second SIM was in use when the dual-SIM group last read it.
    bool IsSecondSimActive() const { return activeSimSlot == kSecondSimSlot; }

    /// Slot number of the SIM in use, kept from one request to the next.
    std::uint32_t activeSimSlot = 0;
    /// Part of the layout of this class; not used.
    std::string reservedTexts[2];
    bool isGPSSupported = false;
    bool isSMBSupported = false;
    bool isMTSMSSupported = false;
    bool isWifiSupported = false;
    bool isGuestWifiSupported = false;
    bool isPCOSupported = false;
    bool isNUASupported = false;
    bool isOMADMSupported = false;
    bool isDualSIMSupported = false;
    std::unique_ptr<BandCombination> bandCombination;
    /// For the roaming text.
    SubscriberCache subscriber;
};
