// The message bus, on which the notification service publishes its list.
#include "platform/msgbus.h"

#include "not_supported.h"

// What a client of your bus remembers, such as its connection.
struct MsgbusHandler::State {};

// Keep the callback if your bus reports changes; it is null for the service, which only reads.
MsgbusHandler::MsgbusHandler(MsgbusCallbackInterface* /*callback*/)
    : state(std::make_unique<State>()) {}

MsgbusHandler::~MsgbusHandler() = default;

// Connect to the bus. GetData fails for a client that has not connected.
int MsgbusHandler::Initialize() {
    return kNotSupported;
}

// Copy what was last published on the channel: for ANS_NOTIFICATION_CHANNEL, the block that
// platform/notification.h describes. See the declaration for how the size is asked for.
int MsgbusHandler::GetData(const std::string& /*channel*/, void* /*buffer*/,
                           unsigned int& /*size*/) {
    return kNotSupported;
}

// Disconnect; from here on, GetData fails.
int MsgbusHandler::Uninitialize() {
    return kNotSupported;
}
