// What gpsd reports.
#include "bindings/linux/position/gpsd_report.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/sysint.h"

namespace {

constexpr const char* kReceiver =
    R"({"class":"DEVICES","devices":[{"class":"DEVICE","path":"/dev/ttyACM0","activated":"2026-11-22T14:27:51.815Z"}]})";

class GpsReceiversTest : public ::testing::Test {
  protected:
    int After(const std::string& line) {
        receivers.Read(line);
        return receivers.Status();
    }

    binding::GpsReceivers receivers;
};

TEST_F(GpsReceiversTest, WithoutAReceiverPositioningIsOff) {
    EXPECT_EQ(receivers.Status(), SYS_GPS_OFF);
    EXPECT_EQ(After(R"({"class":"VERSION","release":"3.22"})"), SYS_GPS_OFF);
    EXPECT_EQ(After(R"({"class":"DEVICES","devices":[]})"), SYS_GPS_OFF);
}

TEST_F(GpsReceiversTest, AReceiverSearchesUntilItHasAFix) {
    EXPECT_EQ(After(kReceiver), SYS_GPS_SEARCHING);
    EXPECT_EQ(After(R"({"class":"TPV","device":"/dev/ttyACM0","mode":1})"), SYS_GPS_SEARCHING);
    EXPECT_EQ(After(R"({"class":"TPV","device":"/dev/ttyACM0","mode":2})"), SYS_GPS_GOT_FIX);
    EXPECT_EQ(After(R"({"class":"TPV","device":"/dev/ttyACM0","mode":3,"lat":48.1})"),
              SYS_GPS_GOT_FIX);
    EXPECT_EQ(After(R"({"class":"TPV","device":"/dev/ttyACM0","mode":0})"), SYS_GPS_SEARCHING);
}

TEST_F(GpsReceiversTest, OnlyAChangeOfTheStatusIsAChange) {
    EXPECT_TRUE(receivers.Read(kReceiver));
    EXPECT_FALSE(receivers.Read(kReceiver));
    EXPECT_TRUE(receivers.Read(R"({"class":"TPV","device":"/dev/ttyACM0","mode":2})"));
    EXPECT_FALSE(receivers.Read(R"({"class":"TPV","device":"/dev/ttyACM0","mode":3})"));
}

TEST_F(GpsReceiversTest, AReceiverThatIsUnpluggedIsOff) {
    After(kReceiver);
    EXPECT_EQ(After(R"({"class":"DEVICE","path":"/dev/ttyACM0","activated":0})"), SYS_GPS_OFF);
    EXPECT_EQ(After(R"({"class":"DEVICE","path":"/dev/ttyACM0","activated":1795356060.5})"),
              SYS_GPS_SEARCHING);
    EXPECT_EQ(After(R"({"class":"DEVICES","devices":[]})"), SYS_GPS_OFF);
}

TEST_F(GpsReceiversTest, OneOfTwoReceiversWithAFixIsEnough) {
    After(R"({"class":"TPV","device":"/dev/ttyACM0","mode":3})");
    EXPECT_EQ(After(R"({"class":"TPV","device":"/dev/ttyACM1","mode":1})"), SYS_GPS_GOT_FIX);
    EXPECT_EQ(After(R"({"class":"DEVICE","path":"/dev/ttyACM0","activated":0})"),
              SYS_GPS_SEARCHING);
}

TEST_F(GpsReceiversTest, WhatIsNoReportTellsNothing) {
    After(kReceiver);
    for (const std::string& line :
         {std::string(R"({"class":"TPV","device":"/dev/ttyACM0","mode":"3"})"),
          std::string(R"({"class":"TPV","device":"/dev/ttyACM0","mode":null})"),
          std::string(R"({"class":"TPV","device":"/dev/ttyACM0")"), std::string(R"("TPV")"),
          std::string("\"TPV\" \xff\xfe"), std::string(R"({"class":"DEVICES","devices":7})"),
          std::string(100'000, '[') + "\"TPV\""}) {
        receivers.Read(line);
    }
    EXPECT_EQ(After(kReceiver), SYS_GPS_SEARCHING);
    EXPECT_EQ(After(R"({"class":"TPV","device":"/dev/ttyACM0","mode":9223372036854775807})"),
              SYS_GPS_GOT_FIX);
}

TEST_F(GpsReceiversTest, WhatIsWrongStaysSoUntilItIsRightAgain) {
    receivers.Read(R"({"class":"TPV","device":"/dev/ttyACM0","mode":"3"})");
    EXPECT_TRUE(receivers.Flaws().mode);
    EXPECT_FALSE(receivers.Flaws().line);
    receivers.Read(R"({"class":"SKY","satellites":[)");
    EXPECT_TRUE(receivers.Flaws().line);
    EXPECT_TRUE(receivers.Flaws().mode);
    receivers.Read(R"({"class":"SKY"})");
    EXPECT_FALSE(receivers.Flaws().line);
    receivers.Read(R"({"class":"TPV","device":"/dev/ttyACM0","mode":2})");
    EXPECT_FALSE(receivers.Flaws().mode);
    receivers.Read(R"({"class":"TPV","device":"/dev/ttyACM0"})");
    EXPECT_TRUE(receivers.Flaws().mode);
}

TEST_F(GpsReceiversTest, ReceiversAreKeptUpToALimit) {
    for (int receiver = 0; receiver < 1000; ++receiver) {
        After(R"({"class":"TPV","mode":1,"device":")" + std::to_string(receiver) + "\"}");
    }
    EXPECT_EQ(After(R"({"class":"TPV","mode":3,"device":"another"})"), SYS_GPS_SEARCHING);
}

}  // namespace
