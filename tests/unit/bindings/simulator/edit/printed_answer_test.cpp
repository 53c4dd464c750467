// What sysintcli and webui_cli print is accepted as values of a document.
#include "bindings/simulator/edit/printed_answer.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <stdexcept>

namespace {

using json = nlohmann::ordered_json;
using binding::FromPrinted;
using binding::KeyPath;

std::string Taken(const KeyPath& path, const std::string& printed) {
    return FromPrinted(path, json::parse(printed)).dump();
}

TEST(PrintedAnswer, OfOneNumberLosesTheObjectAroundIt) {
    const KeyPath status = {"sys", "getSIMStatus"};
    EXPECT_EQ(Taken(status, R"({"status": {"value": 7, "name": "ready"}})"), "\"ready\"");
    EXPECT_EQ(Taken(status, R"({"value": 7, "name": "ready"})"), "\"ready\"");
    EXPECT_EQ(Taken(status, R"({"value": -3, "name": null, "explanation": "no name"})"), "-3");
    EXPECT_EQ(Taken(status, "7"), "7");
    EXPECT_EQ(Taken(status, R"({"state": 7})"), R"({"state":7})");
    EXPECT_EQ(Taken(status, R"({"error": 5})"), R"({"error":5})");
    EXPECT_EQ(Taken({"sys", "getNumSims"}, R"({"count": 2})"), "2");
    EXPECT_EQ(Taken({"webui", "softwareInstallationDuration"}, R"({"duration": 9})"), "9");
}

TEST(PrintedAnswer, OfARecordHasNamesAsValues) {
    EXPECT_EQ(Taken({"sys", "getBatteryStatus"},
                    R"({"chargePercent": 84, "detection": {"value": 2, "name": "present"}})"),
              R"({"chargePercent":84,"detection":"present"})");
    EXPECT_EQ(Taken({"sys", "getAllSimSlotsInfo"},
                    R"({"count": 1, "slots": [{"simStatus": {"value": 3, "name": "error"}}]})"),
              R"({"count":1,"slots":[{"simStatus":"error"}]})");
    EXPECT_EQ(Taken({"sys", "getConnectedDeviceList"},
                    R"({"devices": [{"connectionKind": {"value": 0, "name": "wifi"}}]})"),
              R"([{"connectionKind":"wifi"}])");
    EXPECT_EQ(Taken({"sys", "getAllSimSlotsInfo", "slots", std::size_t{0}, "simStatus"},
                    R"({"value": 3, "name": "error"})"),
              "\"error\"");
}

TEST(PrintedAnswer, OfACallWithAnIndexOrANameIsThatOfOne) {
    EXPECT_EQ(Taken({"sys", "getUIFieldShowEnabled", "apn"}, R"({"show": 1})"), "1");
    // The name of a field, and not what is printed.
    EXPECT_EQ(Taken({"sys", "getUIFieldShowEnabled"}, R"({"show": 1})"), R"({"show":1})");
    EXPECT_EQ(Taken({"sys", "getWiFiGuestProfileEnabled", "1"}, R"({"enabled": 1})"), "1");
    EXPECT_EQ(Taken({"sys", "getWiFiGuestProfileEnabled"}, R"({"enabled": 1})"), "1");
    EXPECT_EQ(Taken({"sys", "getSIMCarrierGID", "0"}, R"({"length": 2, "gid": "02ff"})"),
              "[2,255]");
    EXPECT_EQ(Taken({"sys", "getSIMCarrierGID"}, R"({"length": 0, "gid": ""})"), "[]");
    EXPECT_EQ(Taken({"sys", "getSIMCarrierGID"}, R"({"length": 1, "gid": "0x"})"), "null");
    EXPECT_EQ(Taken({"webui", "externalUriData", "support"}, R"({"address": "a"})"), "\"a\"");
    EXPECT_EQ(Taken({"webui", "uriData", "sms"}, R"({"address": "a"})"), R"({"address":"a"})");
}

TEST(PrintedAnswer, OfFeaturesIsAnObject) {
    const char* const features = R"({"features": [{"name": "a", "value": 1}]})";
    EXPECT_EQ(Taken({"webui", "commonFeatures"}, features), R"({"a":1})");
    EXPECT_EQ(Taken({"webui", "appFeatures", "sms"}, features), R"({"a":1})");
    EXPECT_EQ(Taken({"webui", "commonConfigurations"}, R"({"configurations": []})"), "{}");
    EXPECT_EQ(Taken({"webui", "commonFeatures"}, R"({"features": 1})"), "1");
    EXPECT_EQ(Taken({"webui", "commonFeatures"}, R"({"features": [1]})"), "null");
}

TEST(PrintedAnswer, WithTheNameOfAnotherNumberIsRefused) {
    try {
        Taken({"sys", "getSIMStatus"}, R"({"value": 6, "name": "ready"})");
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "sys.getSIMStatus: 6 is not called 'ready'");
    }
}

}  // namespace
