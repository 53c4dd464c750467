// The message bus. Each channel holds the block that the device answers for it; the callback for
// changes is never called.
#include "platform/msgbus.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "bindings/device/calls.h"
#include "bindings/device/seen_call.h"

using binding::Device;
using binding::FailureOf;
using binding::WithDevice;

namespace {

constexpr int kCodeBase = 0;

}  // namespace

struct MsgbusHandler::State {
    bool joined = false;
};

MsgbusHandler::MsgbusHandler(MsgbusCallbackInterface* /*callback*/)
    : state(std::make_unique<State>()) {}

MsgbusHandler::~MsgbusHandler() = default;

int MsgbusHandler::Initialize() {
    state->joined = true;
    return MSGBUS_SUCCESS;
}

int MsgbusHandler::GetData(const std::string& channel, void* buffer, unsigned int& size) {
    if (!state->joined) {
        return binding::kBusNotJoined;
    }
    const auto read = [&](const Device& device) {
        const auto found = device.channels.find(channel);
        if (found == device.channels.end()) {
            return static_cast<int>(binding::kNotAnswered);
        }
        const int failure = FailureOf(found->second, kCodeBase);
        if (failure != MSGBUS_SUCCESS) {
            return failure;
        }
        const std::vector<std::byte>& block = found->second.value;
        const bool fits = buffer != nullptr && size >= block.size();
        size = static_cast<unsigned int>(block.size());
        if (!fits) {
            return static_cast<int>(MSGBUS_BUFFER_NEEDED);
        }
        std::copy(block.begin(), block.end(), static_cast<std::byte*>(buffer));
        return static_cast<int>(MSGBUS_SUCCESS);
    };
    return binding::Watched(
        "MsgbusHandler::GetData", std::string_view(channel), MSGBUS_SUCCESS,
        [&] { return WithDevice(kCodeBase, read); },
        [&] { return std::span(static_cast<const std::byte*>(buffer), size); });
}

int MsgbusHandler::Uninitialize() {
    state->joined = false;
    return MSGBUS_SUCCESS;
}
