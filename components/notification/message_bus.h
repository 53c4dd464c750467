#pragma once

#include "framework/attempt.h"
#include "platform/msgbus.h"

/// Joins the message bus, runs @p step with its client and leaves the bus again, also when
/// something throws. What is thrown goes no further: it is logged as a failure of @p name, a step
/// of the function with @p signature.
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
