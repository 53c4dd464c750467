#pragma once

#include "framework/attempt.h"
#include "platform/msgbus.h"

/// Joins the message bus, runs @p step with the client and leaves the bus, even if the step throws.
/// Exceptions are caught and logged as a failure of @p name, a step of the function with
/// @p signature, or of the bus itself (see Attempt).
template <typename Step>
void OnMessageBus(const char* signature, const char* name, Step step) {
    Attempt(signature, "message bus", [&] {
        MsgbusHandler bus(nullptr);
        Attempt(signature, name, [&] {
            (void)bus.Initialize();
            step(bus);
        });
        (void)bus.Uninitialize();
    });
}
