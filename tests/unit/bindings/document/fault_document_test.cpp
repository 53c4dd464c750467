// How a document says that calls are slow, hang, or fail only now and then.
#include <gtest/gtest.h>

#include "tests/unit/bindings/document/document_reading.h"

namespace {

using binding::Device;
using namespace std::chrono_literals;

std::string GpsComplaint(const std::string& entry) {
    return SysComplaint("getGPSStatus", entry);
}

const std::string kGps = "device.json:3: sys.getGPSStatus";

TEST(FaultDocument, SaysWhatHappensAndHowOften) {
    const Device device = Read(R"({"sys": {"getGPSStatus": {"error": 5, "times": 3,
        "probability": 0.25, "seed": 7, "since": "2026-11-21T12:00:00.123Z", "delay": 1.5,
        "healed": 2}}})");
    EXPECT_TRUE(device.getGPSStatus.named);
    EXPECT_EQ(device.getGPSStatus.error, 0);
    EXPECT_EQ(device.getGPSStatus.value, 2);
    const binding::FaultPlan& plan = device.getGPSStatus.fault->Plan();
    EXPECT_EQ(plan.call, "sys.getGPSStatus");
    EXPECT_EQ(plan.code, 5);
    EXPECT_EQ(plan.times, 3U);
    EXPECT_EQ(plan.probability, 0.25);
    EXPECT_EQ(plan.seed, 7U);
    EXPECT_EQ(plan.delay, 1500ms);
    EXPECT_FALSE(plan.hangs);
    EXPECT_EQ(device.faults, binding::Faults{device.getGPSStatus.fault});
}

TEST(FaultDocument, AnErrorAloneIsNoFault) {
    for (const std::string entry : {R"({"error": 5})", R"({"error": 5, "healed": 2})"}) {
        const Device device = Read("{\"sys\": {\"getGPSStatus\": " + entry + "}}");
        EXPECT_EQ(device.getGPSStatus.error, 5);
        EXPECT_EQ(device.getGPSStatus.fault, nullptr);
        EXPECT_TRUE(device.faults.empty());
    }
}

TEST(FaultDocument, NamesOfFeaturesMayBeThoseOfFaults) {
    EXPECT_EQ(Read(R"({"webui": {"commonFeatures": {"delay": 2, "hang": 1, "times": 3}}})")
                  .commonFeatures.value.size(),
              3U);
    EXPECT_EQ(Read(R"({"sys": {"getUIFieldShowEnabled": {"delay": 2, "healed": 1}}})")
                  .getUIFieldShowEnabled.value.size(),
              2U);
}

TEST(FaultDocument, MistakesAreNamedWithTheirPlace) {
    EXPECT_EQ(GpsComplaint("{\"error\": 5,\n\"time\": 3, \"healed\": 2}"),
              "device.json:4: sys.getGPSStatus.time: expected one of error, times, probability, "
              "seed, delay, hang, since, healed, found an unknown name");
    for (const std::string times : {"0", "-1", "1.5", "\"3\"", "1000000001", "null"}) {
        EXPECT_EQ(GpsComplaint(R"({"error": 5, "healed": 2, "times": )" + times + "}"),
                  kGps + ".times: expected a number from 1 to 1000000000, found " +
                      (times.front() == '"' ? "a text" : times));
    }
    for (const std::string probability : {"-0.1", "1.1", "true"}) {
        EXPECT_EQ(GpsComplaint(R"({"error": 5, "healed": 2, "probability": )" + probability + "}"),
                  kGps + ".probability: expected a number from 0 to 1, found " + probability);
    }
    EXPECT_EQ(GpsComplaint(R"({"error": 5, "healed": 2, "probability": 0.5, "seed": -1})"),
              kGps + ".seed: expected an unsigned 32-bit integer, found -1");
    EXPECT_EQ(GpsComplaint(R"({"error": 5, "healed": 2, "seed": 1})"),
              kGps + ".seed: expected \"probability\" beside it, found none");
    for (const std::string delay : {"0", "-1", "604801", "true"}) {
        EXPECT_EQ(
            GpsComplaint(R"({"error": 5, "healed": 2, "delay": )" + delay + "}"),
            kGps + ".delay: expected a number of seconds from 0.001 to 604800, found " + delay);
    }
    EXPECT_EQ(GpsComplaint(R"({"error": null, "healed": 2, "hang": false})"),
              kGps + ".hang: expected true, found false");
    for (const std::string since :
         {"\"2026-11-21\"", "\"2026-11-21T24:00:00.000Z\"", "\"2026-02-29T12:00:00.000Z\"",
          "\"2026-11-21 12:00:00.000Z\""}) {
        EXPECT_EQ(GpsComplaint(R"({"error": 5, "times": 1, "healed": 2, "since": )" + since + "}"),
                  kGps +
                      ".since: expected a time such as 2026-11-21T12:00:00.123Z, found another "
                      "text");
    }
    EXPECT_EQ(GpsComplaint(R"({"error": 5, "times": 1, "healed": 2, "since": 1})"),
              kGps + ".since: expected a time such as 2026-11-21T12:00:00.123Z, found 1");
}

TEST(FaultDocument, AHangingCallHasNeitherErrorNorDelay) {
    const std::string told = kGps +
                             ".hang: expected neither an error nor \"delay\" beside it, found one "
                             "of them";
    EXPECT_EQ(GpsComplaint(R"({"error": 5, "hang": true, "healed": 2})"), told);
    EXPECT_EQ(GpsComplaint(R"({"error": null, "delay": 1, "hang": true, "healed": 2})"), told);
    EXPECT_EQ(GpsComplaint(R"({"error": null, "hang": true, "healed": 2})"), "");
}

TEST(FaultDocument, WithoutAnErrorSomethingElseHappens) {
    const std::string told =
        kGps +
        ".error: expected error_buffer_needed, error_no_sd_card, not_answered, no_device, "
        "not_changed, binding_failed, bus_not_joined, source_lost, nothing_to_connect, "
        "interrupted or a 32-bit integer other than 0 and 983040, or \"delay\" or \"hang\" "
        "beside it, found null";
    EXPECT_EQ(GpsComplaint(R"({"error": null, "healed": 2})"), told);
    EXPECT_EQ(GpsComplaint(R"({"error": null, "times": 2, "healed": 2})"), told);
}

TEST(FaultDocument, SaysWhatOtherCallsAnswer) {
    const std::string told =
        kGps +
        ": expected \"healed\", the answer of calls that do not fail, beside \"error\", "
        "found none";
    for (const std::string entry :
         {R"({"error": 5, "times": 3})", R"({"error": 5, "probability": 0.5})",
          R"({"error": 5, "delay": 1})", R"({"error": null, "hang": true})"}) {
        EXPECT_EQ(GpsComplaint(entry), told);
    }
    EXPECT_EQ(GpsComplaint(R"({"error": 5, "times": 3, "healed": "x"})"),
              kGps +
                  ".healed: expected off, searching, got_fix or a 32-bit integer or "
                  "{\"error\": N}, found 'x'");
    EXPECT_EQ(GpsComplaint(R"({"error": 5, "times": 3, "healed":
        {"error": 6, "times": 3, "healed": 2}})"),
              "device.json:3: sys.getGPSStatus.healed: expected an answer or {\"error\": N}, found "
              "another fault");
    EXPECT_EQ(GpsComplaint(R"({"error": 5, "healed": {"error": 6, "healed": 2}})"), "");
}

TEST(FaultDocument, ConnectingMayTakeTime) {
    const Device device = Read(R"({"sys": {"cellularDataConnect": {"takes": 4.5},
        "cellularDataDisconnect": {"error": 5, "times": 1, "healed": {"takes": 0}}}})");
    EXPECT_EQ(device.cellularDataConnect.value.takes, 4500ms);
    EXPECT_EQ(device.cellularDataDisconnect.value.takes, 0ms);
    const std::string place = "device.json:3: sys.cellularDataConnect";
    EXPECT_EQ(SysComplaint("cellularDataConnect", R"({"takes": -1})"),
              place + ".takes: expected a number of seconds from 0 to 604800, found -1");
    EXPECT_EQ(SysComplaint("cellularDataConnect", R"({"takes": 1, "delay": 1})"),
              place + ".delay: expected one of takes, found an unknown name");
    EXPECT_EQ(SysComplaint("sdkInitialize", R"({"takes": 1})"),
              "device.json:3: sys.sdkInitialize: expected {\"error\": N}, found an object");
}

TEST(FaultDocument, TheStatusOfTheDataCallMayBeAboutToChange) {
    const auto told = [](const std::string& entry) {
        return SysComplaint("getCellularDataConnectionStatus", entry);
    };
    const std::string place = "device.json:3: sys.getCellularDataConnectionStatus";
    EXPECT_EQ(told(R"({"now": 4, "next": 2, "at": "2026-11-21T12:00:00.000Z"})"), "");
    EXPECT_EQ(told(R"({"now": 4, "next": 2})"),
              place +
                  ": expected ready, dormant, connected, initializing, connecting, "
                  "disconnecting, activating, unactivated or a 32-bit integer or an object with "
                  "\"now\", \"next\" and \"at\" "
                  "or {\"error\": N}, found an object");
    EXPECT_EQ(told(R"({"now": 4, "next": "conected", "at": "2026-11-21T12:00:00.000Z"})"),
              place +
                  ".next: expected ready, dormant, connected, initializing, connecting, "
                  "disconnecting, activating, unactivated or a 32-bit integer, found 'conected'; "
                  "did you mean connected?");
    EXPECT_EQ(told(R"({"now": 4, "next": 2, "at": "soon"})"),
              place + ".at: expected a time such as 2026-11-21T12:00:00.123Z, found another text");
    EXPECT_EQ(told(R"({"now": 4, "next": 2, "at": "2026-11-21T12:00:00.000Z", "by": 1})"),
              place + ".by: expected one of now, next, at, found an unknown name");
    EXPECT_EQ(GpsComplaint(R"({"now": 4, "next": 2, "at": ""})"),
              kGps +
                  ": expected off, searching, got_fix or a 32-bit integer or {\"error\": N}, "
                  "found an object");
}

}  // namespace
