// Names on ModemManager's bus interface.
#pragma once

#include "bindings/linux/bus/value_kind.h"

namespace binding {

constexpr const char* kModemManager = "org.freedesktop.ModemManager1";
constexpr const char* kModemManagerPath = "/org/freedesktop/ModemManager1";
constexpr const char* kModemInterface = "org.freedesktop.ModemManager1.Modem";
constexpr const char* kModem3gppInterface = "org.freedesktop.ModemManager1.Modem.Modem3gpp";
constexpr const char* kSignalInterface = "org.freedesktop.ModemManager1.Modem.Signal";
constexpr const char* kSimpleInterface = "org.freedesktop.ModemManager1.Modem.Simple";
constexpr const char* kMessagingInterface = "org.freedesktop.ModemManager1.Modem.Messaging";
constexpr const char* kSimInterface = "org.freedesktop.ModemManager1.Sim";
constexpr const char* kBearerInterface = "org.freedesktop.ModemManager1.Bearer";
constexpr const char* kSmsInterface = "org.freedesktop.ModemManager1.Sms";

/// What ModemManager's properties must be to be understood.
ExpectedKinds ModemManagerKinds();

/// Path that stands for no object.
constexpr const char* kNoObject = "/";

}  // namespace binding
