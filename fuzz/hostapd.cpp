// Messages of hostapd. The input is one, of any kind.
#include <utf8.h>

#include "bindings/linux/network/hostapd_reply.h"
#include "fuzz/target.h"

namespace {

constexpr binding::MacAddress kLastAddress = 0xffffffffffff;

bool IsShortUtf8(const std::string& text) {
    return text.size() <= 64 && utf8::is_valid(text.begin(), text.end());
}

void CheckStatus(const std::string& message) {
    for (const char* interface : {"wlan0", "wlan0_guest", ""}) {
        const auto status = binding::ParseStatus(message, interface);
        if (status) {
            Require(IsShortUtf8(status->state), "a state is UTF-8", status->state);
            Require(IsShortUtf8(status->ssid), "a name is UTF-8", status->ssid);
            Require(status->frequency >= 0, "a frequency is none or positive");
            Require(!status->enabled || status->state == "ENABLED", "one state is enabled",
                    status->state);
        }
    }
}

void CheckStations(const std::string& message) {
    const auto stations = binding::ParseStations(message);
    Require(stations.size() <= LinesOf(message).size(), "a station takes a line");
    for (const binding::Station& station : stations) {
        Require(station.mac <= kLastAddress, "an address has 48 bits");
        Require(binding::MacIn(binding::MacText(station.mac)) == station.mac,
                "an address is read as it is written");
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string message = InputText(data, size);
    CheckStatus(message);
    CheckStations(message);
    const auto event = binding::ParseEvent(message);
    if (event) {
        using Kind = binding::AccessPointEvent::Kind;
        const bool isAboutStation =
            event->kind == Kind::stationJoined || event->kind == Kind::stationLeft;
        Require(message.front() == '<', "a reply is no event", message);
        Require(event->mac <= kLastAddress, "an address has 48 bits");
        Require(isAboutStation || event->mac == 0, "other events are about no station", message);
    }
    return 0;
}
