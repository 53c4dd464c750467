// What ModemManager tells of a modem that is registered and connected, for tests to change.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

constexpr const char* kTestModem = "/org/freedesktop/ModemManager1/Modem/0";
constexpr const char* kTestSim = "/org/freedesktop/ModemManager1/SIM/0";
constexpr const char* kTestBearer = "/org/freedesktop/ModemManager1/Bearer/0";

inline nlohmann::json TestTree() {
    return nlohmann::json::parse(R"({
        "/org/freedesktop/ModemManager1/Modem/0": {
            "org.freedesktop.ModemManager1.Modem": {
                "State": 11,
                "StateFailedReason": 0,
                "UnlockRequired": 1,
                "UnlockRetries": {"2": 3, "4": 10},
                "PowerState": 3,
                "AccessTechnologies": 16384,
                "SignalQuality": [62, true],
                "CurrentModes": [14, 8],
                "CurrentCapabilities": 12,
                "CurrentBands": [31, 33, 50],
                "SupportedBands": [31, 33, 50, 301, 378],
                "Sim": "/org/freedesktop/ModemManager1/SIM/0",
                "SimSlots": [],
                "PrimarySimSlot": 0,
                "Bearers": ["/org/freedesktop/ModemManager1/Bearer/0"]
            },
            "org.freedesktop.ModemManager1.Modem.Modem3gpp": {
                "RegistrationState": 1,
                "OperatorCode": "26201",
                "OperatorName": "Orvane",
                "NetworkRejection": {},
                "Pco": [[1, false, [255, 0, 4, 98, 242, 16, 3]]]
            },
            "org.freedesktop.ModemManager1.Modem.Signal": {
                "Rate": 5,
                "Lte": {"rsrp": -97.0, "rsrq": -11.0, "rssi": -65.0, "snr": 12.6},
                "Nr5g": {}
            }
        },
        "/org/freedesktop/ModemManager1/SIM/0": {
            "org.freedesktop.ModemManager1.Sim": {
                "Active": true,
                "Imsi": "262011234567890",
                "SimIdentifier": "89490200001234567890",
                "OperatorIdentifier": "26201",
                "OperatorName": "Orvane SIM",
                "Gid1": [186, 1],
                "Gid2": []
            }
        },
        "/org/freedesktop/ModemManager1/Bearer/0": {
            "org.freedesktop.ModemManager1.Bearer": {
                "Connected": true,
                "Suspended": false,
                "Interface": "wwan0",
                "ConnectionError": ["", ""],
                "Stats": {"rx-bytes": 4000, "tx-bytes": 300, "duration": 17, "attempts": 1}
            }
        }
    })");
}

inline nlohmann::json& ModemProperties(nlohmann::json& tree) {
    return tree[kTestModem]["org.freedesktop.ModemManager1.Modem"];
}

inline nlohmann::json& NetworkProperties(nlohmann::json& tree) {
    return tree[kTestModem]["org.freedesktop.ModemManager1.Modem.Modem3gpp"];
}

inline nlohmann::json& SignalProperties(nlohmann::json& tree) {
    return tree[kTestModem]["org.freedesktop.ModemManager1.Modem.Signal"];
}

inline nlohmann::json& SimProperties(nlohmann::json& tree) {
    return tree[kTestSim]["org.freedesktop.ModemManager1.Sim"];
}

inline nlohmann::json& BearerProperties(nlohmann::json& tree) {
    return tree[kTestBearer]["org.freedesktop.ModemManager1.Bearer"];
}
