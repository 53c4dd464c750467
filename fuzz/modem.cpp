// What ModemManager tells. The input is JSON: an object with the objects as "tree" (path,
// interface, property) and the reply of GetCellInfo as "cells".
#include "bindings/linux/modem/modem.h"

#include <nlohmann/json.hpp>
#include <string>

#include "bindings/linux/bus/tree.h"
#include "bindings/linux/modem/messages.h"
#include "bindings/linux/modem/modem_manager.h"
#include "bindings/linux/modem/tables/signal_bars.h"
#include "fuzz/target.h"
#include "platform/fixed_text.h"

namespace {

using nlohmann::json;

template <std::size_t Size>
void RequireEnd(const char (&field)[Size]) {
    Require(FixedText(field).size() < Size, "a text has an end");
}

void RequireSense(const binding::Device& device) {
    const auto& service = device.getCellularServiceStats.value;
    RequireEnd(service.networkName);
    RequireEnd(service.networkId);
    RequireEnd(device.getSubscriberInfo.value.identity);
    Require(service.signalBars >= 0 && service.signalBars <= binding::kMostBars,
            "there are from 0 to 5 bars");
    Require(service.pci >= 0 && service.pci <= 1007, "a cell has an identity of the standard");
    Require(device.getCellularBand.value >= 0 && device.getCellularBand.value <= 88,
            "an LTE band is one of the standard");
    const auto& slots = device.getAllSimSlotsInfo.value;
    Require(slots.count >= 1 && slots.count <= 2, "there are one or two slots");
    Require(device.getSIMStatus.value >= SYS_SIM_NOT_FOUND &&
                device.getSIMStatus.value <= SYS_SIM_READY,
            "a state of the SIM is a known one");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const json input = json::parse(data, data + size, nullptr, false);
    const json& tree = binding::Member(input, "tree");
    const std::string path = binding::ModemPath(tree);
    binding::Device device;
    binding::FillModem(binding::ReadModem(tree, path, binding::Member(input, "cells")), device);
    RequireSense(device);
    const json& messaging =
        binding::Member(binding::Member(tree, path), binding::kMessagingInterface);
    for (const auto& message : binding::ReadMessages(tree, binding::MessagePaths(messaging), {})) {
        Require(message.key.size() == 64, "a message has a key");
    }
    return 0;
}
