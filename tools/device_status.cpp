#include "tools/device_status.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/fixed_text.h"
#include "platform/sysint.h"
#include "platform/webui.h"
#include "tools/json_output.h"
#include "tools/list_reading.h"
#include "tools/msgbus_commands.h"

namespace {

using binding::Enumeration;
using Rows = std::vector<std::pair<std::string, std::string>>;

std::string OnOff(int value) {
    return value != 0 ? "on" : "off";
}

std::string YesNo(int value) {
    return value != 0 ? "yes" : "no";
}

std::string Plain(std::int64_t value) {
    return std::to_string(value);
}

/// @p value by its name, or as a number if it has none.
std::string NamedText(std::int64_t value, Enumeration names) {
    const char* const name = binding::NameOf(value, names);
    return name == nullptr ? std::to_string(value) : name;
}

/// A function for numbers of an enumeration.
auto Name(Enumeration names) {
    return [names](std::int64_t value) { return NamedText(value, names); };
}

/// A function for numbers with a unit.
auto In(const char* unit) {
    return [unit](std::int64_t value) { return std::to_string(value) + " " + unit; };
}

/// A number of bytes in the largest decimal unit of which there is at least one.
std::string Bytes(std::uint64_t bytes) {
    constexpr std::array<const char*, 5> kUnits = {"bytes", "kB", "MB", "GB", "TB"};
    auto number = static_cast<double>(bytes);
    std::size_t unit = 0;
    for (; number >= 1000 && unit + 1 < kUnits.size(); ++unit) {
        number /= 1000;
    }
    std::array<char, 32> text{};
    (void)std::snprintf(text.data(), text.size(), unit == 0 ? "%.0f %s" : "%.1f %s", number,
                        kUnits.at(unit));
    return text.data();
}

/// A text of the device without characters that would disturb a terminal.
std::string Visible(std::string_view text) {
    // The dump replaces what is not UTF-8 and escapes control characters.
    const std::string quoted = Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
    return text.empty() ? "-" : quoted.substr(1, quoted.size() - 2);
}

/// The rows of one section, which calls of the platform fill.
class Section {
  public:
    explicit Section(Enumeration newBindingCodes) : bindingCodes(newBindingCodes) {}

    void Add(std::string name, std::string value) {
        rows.emplace_back(std::move(name), std::move(value));
    }

    /// A row of what @p describe makes of the answer of @p call.
    template <typename T, typename Describe>
    void Ask(const std::string& name, const char* callName, int (*call)(T*), Describe describe) {
        if (const auto value = Answer(name, callName, call)) {
            Add(name, describe(*value));
        }
    }

    /// The answer of @p call. If it fails, that is the row @p name.
    template <typename T>
    std::optional<T> Answer(const std::string& name, const char* callName, int (*call)(T*),
                            int success = SYS_SUCCESS) {
        T value{};
        const int code = call(&value);
        if (code != success) {
            AddFailure(name, callName, code, success == SYS_SUCCESS ? 0 : success);
            return std::nullopt;
        }
        return value;
    }

    void AddFailure(const std::string& name, const std::string& callName, int code,
                    int codeBase = 0) {
        const std::int64_t own = std::int64_t{code} - codeBase;
        const char* known = binding::NameOf(own, bindingCodes);
        if (known == nullptr && codeBase == 0) {
            known = binding::NameOf(code, binding::kSysResult);
        }
        const std::string number = std::to_string(code);
        Add(name,
            callName + " fails: " + (known == nullptr ? number : known + (" (" + number + ")")));
    }

    Rows rows;

  private:
    Enumeration bindingCodes;
};

// NOLINTNEXTLINE(cppcoreguidelines-macro-usage): the name of the call as text and as function
#define CALL(name) #name, name

void AskModem(Section& modem) {
    modem.Ask("radio", CALL(sys_getRadioEnabled), OnOff);
    modem.Ask("service", CALL(sys_getCellularServiceStatus), Name(binding::kServiceStatus));
    if (const auto stats = modem.Answer("network", CALL(sys_getCellularServiceStats))) {
        modem.Add("network", Visible(FixedText(stats->networkName)) + " (" +
                                 Visible(FixedText(stats->networkId)) + ")");
        modem.Add("technology", NamedText(stats->technology, binding::kTechnology) +
                                    (stats->technology == SYS_TECHNOLOGY_5G
                                         ? ", " + NamedText(stats->fiveGType, binding::kFiveGType)
                                         : ""));
        modem.Add("roaming", NamedText(stats->roaming, binding::kRoaming));
        modem.Add("femtocell", YesNo(stats->femtoCell));
    }
    modem.Ask("5G mode", CALL(sys_getCellular5GMode), Name(binding::kWanFiveGMode));
    int band = 0;
    int second = 0;
    const int code = sys_getCellular5GBand(&band, &second);
    if (code == SYS_SUCCESS) {
        modem.Add("5G band", Plain(band));
    } else {
        modem.AddFailure("5G band", "sys_getCellular5GBand", code);
    }
    modem.Ask("5G bandwidth", CALL(sys_get5GBandWidth), In("MHz"));
    modem.Ask("LTE band", CALL(sys_getCellularBand), Plain);
    modem.Ask("LTE bandwidth", CALL(sys_getCABandWidth), In("MHz"));
    modem.Ask("3G band", CALL(sys_getCellular3GBand), Plain);
}

void AskSignal(Section& signal) {
    if (const auto stats = signal.Answer("signal", CALL(sys_getCellularServiceStats))) {
        signal.Add("strength", Plain(stats->signalBars) + " bars");
        signal.Add("SINR", Plain(stats->sinr));
        signal.Add("SNR", Plain(stats->snr));
        signal.Add("cell (PCI)", Plain(stats->pci));
    }
}

void AskSim(Section& sim) {
    sim.Ask("state", CALL(sys_getSIMStatus), Name(binding::kSimStatus));
    sim.Ask("subscriber", CALL(sys_getSubscriberInfo),
            [](const auto& info) { return Visible(FixedText(info.identity)); });
    sim.Ask("blocked", CALL(sys_getNetworkSIMLockStatus),
            [](const auto& lock) { return YesNo(lock.carrierBlocked); });
    sim.Ask("last reject", CALL(sys_getSIMNetworkRejectCode),
            [](int code) { return code == 0 ? "none" : "code " + Plain(code); });
    sim.Ask("slot in use", CALL(sys_getActiveSimSlot), Plain);
    if (const auto all = sim.Answer("slots", CALL(sys_getAllSimSlotsInfo))) {
        const auto count =
            std::clamp(all->count, 0, static_cast<std::int32_t>(std::size(all->slots)));
        for (std::int32_t index = 0; index < count; ++index) {
            const sys_sim_slot_t& slot = all->slots[index];
            sim.Add("slot " + Plain(index + 1),
                    NamedText(slot.simStatus, binding::kSimStatus) + ", " +
                        Visible(FixedText(slot.networkName)) + ", service " +
                        NamedText(slot.serviceStatus, binding::kServiceStatus) + ", data " +
                        NamedText(slot.dataConnectionStatus, binding::kDataConnectionStatus));
        }
    }
}

void AskConnection(Section& connection) {
    connection.Ask("mobile data", CALL(sys_getCellularDataEnabled), OnOff);
    connection.Ask("state", CALL(sys_getCellularDataConnectionStatus),
                   Name(binding::kDataConnectionStatus));
    connection.Ask("account", CALL(sys_getCellularDataAccountStatus), [](int status) {
        return status == 0 ? "no limit" : NamedText(status, binding::kAccountStatus);
    });
}

void AskTraffic(Section& traffic) {
    if (const auto stats = traffic.Answer("traffic", CALL(sys_getCellularDataConnectionStats))) {
        traffic.Add("direction", NamedText(stats->trafficStatus, binding::kTrafficStatus));
        traffic.Add("received", Bytes(stats->bytesReceived1 + stats->bytesReceived2));
        traffic.Add("sent", Bytes(stats->bytesTransmitted1 + stats->bytesTransmitted2));
        traffic.Add("duration", std::to_string(stats->duration));
    }
}

void AskGuestProfile(Section& wifi, const char* name, int profile) {
    int enabled = 0;
    const int code = sys_getWiFiGuestProfileEnabled(profile, &enabled);
    if (code == SYS_SUCCESS) {
        wifi.Add(name, OnOff(enabled));
    } else {
        wifi.AddFailure(name, "sys_getWiFiGuestProfileEnabled", code);
    }
}

void AskLocalNetwork(Section& local) {
    local.Ask("Wi-Fi", CALL(sys_getWiFiEnabled), OnOff);
    AskGuestProfile(local, "guest 2.4 GHz", SYS_WIFI_GUEST_2_4_GHZ);
    AskGuestProfile(local, "guest 5 GHz", SYS_WIFI_GUEST_5_GHZ);
    local.Ask("most clients", CALL(sys_getWiFiMaxClients), Plain);
    local.Ask("Ethernet", CALL(sys_getEthernetEnabled), OnOff);
    local.Ask("cable", CALL(sys_getEthernetLinkStatus), YesNo);
}

void AskClients(Section& clients) {
    try {
        const auto devices = ReadList<sys_connected_device_t, unsigned int>(
            "sys_getConnectedDeviceList", SYS_SUCCESS, SYS_ERROR_BUFFER_NEEDED,
            sys_getConnectedDeviceList);
        std::map<std::int32_t, int> kinds;
        for (const sys_connected_device_t& device : devices) {
            ++kinds[device.connectionKind];
        }
        clients.Add("connected", std::to_string(devices.size()));
        for (const auto& [kind, count] : kinds) {
            clients.Add(NamedText(kind, binding::kConnectionKind), Plain(count));
        }
    } catch (const CallFailed& failure) {
        clients.AddFailure("connected", failure.what(), failure.Code());
    }
}

void AskBattery(Section& battery) {
    if (const auto status = battery.Answer("battery", CALL(sys_getBatteryStatus))) {
        battery.Add("charge", Plain(status->chargePercent) + " %");
        battery.Add("charging", YesNo(status->chargingState));
        battery.Add("battery", NamedText(status->detection, binding::kBatteryDetection));
        battery.Add("powered by", NamedText(status->chargingSource, binding::kChargingSource));
    }
}

void AskStorage(Section& storage) {
    sys_sd_card_info_t card{};
    const int code = sys_getSDCardInfo(&card);
    if (code == SYS_SUCCESS) {
        // The platform has a unit of its own.
        storage.Add("card", std::to_string(card.totalCapacity));
        storage.Add("free", std::to_string(card.freeSpace));
    } else {
        storage.AddFailure("card", "sys_getSDCardInfo", code);
    }
    storage.Ask("file sharing", CALL(sys_getSambaEnabled), OnOff);
}

void AskMore(Section& more) {
    more.Ask("GPS", CALL(sys_getGPSStatus), Name(binding::kGpsStatus));
    more.Ask("unread SMS", CALL(sys_getSMSUnreadCount), Plain);
    if (const auto update =
            more.Answer("update", CALL(webui_get_software_update_status), WEBUI_SUCCESS)) {
        more.Add("update", "status " + Plain(update->status) + ", version " +
                               Visible(FixedText(update->version)));
    }
    if (const auto settings =
            more.Answer("language", CALL(webui_get_i18n_settings), WEBUI_SUCCESS)) {
        more.Add("language", Visible(FixedText(settings->language)));
    }
}

#undef CALL

void AskNotifications(Section& notifications) {
    try {
        const Json published = PublishedNotifications();
        for (const Json& one : published.at("notifications")) {
            const Json& severity = one.at("severity");
            const Json& name = severity.at("name");
            notifications.Add(
                Visible(one.at("id").get<std::string>()),
                (name.is_string() ? name.get<std::string>() : severity.at("value").dump()) +
                    (one.at("active").get<bool>() ? "" : ", not active"));
        }
        if (notifications.rows.empty()) {
            notifications.Add("none", "");
        }
    } catch (const CallFailed& failure) {
        notifications.AddFailure("list", failure.what(), failure.Code());
    }
}

std::string Padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size() + 1, width), ' ');
    return text;
}

}  // namespace

std::string StatusSection(const std::string& title, const Rows& rows) {
    constexpr std::size_t kTitleWidth = 15;
    std::size_t width = 16;
    for (const auto& row : rows) {
        width = std::max(width, row.first.size() + 1);
    }
    std::string text;
    for (const auto& [name, value] : rows) {
        const std::string line =
            Padded(text.empty() ? title : "", kTitleWidth) + Padded(name, width) + value;
        text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
    }
    return text;
}

std::string DeviceStatus(Enumeration bindingCodes) {
    std::string text;
    const int code = sys_sdkInitialize();
    const auto add = [&](const char* title, void (*ask)(Section&)) {
        Section section(bindingCodes);
        ask(section);
        text += StatusSection(title, section.rows);
    };
    if (code != SYS_SUCCESS) {
        Section device(bindingCodes);
        device.AddFailure("", "sys_sdkInitialize", code);
        text += StatusSection("Device", device.rows);
    }
    add("Modem", AskModem);
    add("Signal", AskSignal);
    add("SIM", AskSim);
    add("Connection", AskConnection);
    add("Traffic", AskTraffic);
    add("Local network", AskLocalNetwork);
    add("Clients", AskClients);
    add("Battery", AskBattery);
    add("Storage", AskStorage);
    add("More", AskMore);
    add("Notifications", AskNotifications);
    (void)sys_sdkShutdown();
    return text;
}
