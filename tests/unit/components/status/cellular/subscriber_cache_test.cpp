// The group identifier is read once per SIM, not once per request.
#include "components/status/cellular/subscriber_cache.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>

#include "bindings/recording/recording.h"
#include "components/status/cellular/internet_texts.h"
#include "platform/sysint.h"
#include "tests/support/records.h"
#include "tests/support/transcript.h"

using recording::CallCount;
using recording::Failure;
using recording::Given;
using recording::Log;
using recording::TranscriptText;

namespace {

constexpr int kDomestic = 1;

const std::string kRefresh = " - int RefreshSubscriberInfo()";
const std::string kGid = " - void GetSIMCarrierGID(uint8_t*, uint8_t*, uint8_t)";

class SubscriberCacheTest : public testing::Test {
  protected:
    void SetUp() override { recording::Reset(); }

    static void GivenIdentity(const std::string& identity) {
        sys_subscriber_info_t info{};
        SetText(info.identity, identity);
        Given("sys_getSubscriberInfo").Writes(info);
    }

    static void GivenGid(std::uint8_t first) {
        Given("sys_getSIMCarrierGID").Writes(first).Writes<std::uint8_t>(1);
    }

    /// The roaming text of one request.
    std::string Domestic() {
        std::string text;
        EXPECT_EQ(GetRoamingText(cache, kDomestic, text), 0);
        return text;
    }

    SubscriberCache cache;
};

TEST_F(SubscriberCacheTest, RefreshReturnsTheResultAndIsLogged) {
    GivenIdentity("310480123456789");
    EXPECT_EQ(RefreshSubscriberInfo(cache), SYS_SUCCESS);
    EXPECT_EQ(TranscriptText(), Steps({Log(7, kRefresh + " - BEGIN"), "sys_getSubscriberInfo()",
                                       Log(7, kRefresh + " - END returning 0")}));
}

TEST_F(SubscriberCacheTest, FailedRefreshReturnsTheCodeAndIsLogged) {
    Given("sys_getSubscriberInfo").Returns(41);
    EXPECT_EQ(RefreshSubscriberInfo(cache), 41);
    EXPECT_EQ(
        TranscriptText(),
        Steps({Log(7, kRefresh + " - BEGIN"), "sys_getSubscriberInfo()",
               Failure(kRefresh + " - sys_getSubscriberInfo failed, returned error code [41]. "
                                  "Try sysintcli getSubscriberInfo from command line."),
               Log(7, kRefresh + " - END returning 41")}));
}

TEST_F(SubscriberCacheTest, FirstRequestReadsTheGroupIdentifierNumberOne) {
    GivenIdentity("310480123456789");
    GivenGid(2);
    EXPECT_EQ(Domestic(), "None");
    EXPECT_EQ(TranscriptText(), Steps({Log(7, kRefresh + " - BEGIN"), "sys_getSubscriberInfo()",
                                       Log(7, kRefresh + " - END returning 0"),
                                       Log(7, kGid + " - BEGIN"), "sys_getSIMCarrierGID(index 1)",
                                       Log(7, kGid + " - simGid: 2"), Log(7, kGid + " - END")}));
}

TEST_F(SubscriberCacheTest, SameSubscriberIsRefreshedEveryTimeAndTheGidNotReadAgain) {
    GivenIdentity("310480123456789");
    GivenGid(2);
    GivenGid(7);
    for (int request = 0; request < 3; ++request) {
        EXPECT_EQ(Domestic(), "None");
    }
    EXPECT_EQ(CallCount("sys_getSubscriberInfo"), 3U);
    EXPECT_EQ(CallCount("sys_getSIMCarrierGID"), 1U);
}

TEST_F(SubscriberCacheTest, GidIsReadOncePerChangeOfSubscriber) {
    GivenIdentity("310480123456789");
    GivenIdentity("310480123456789");
    GivenIdentity("262011234567890");
    GivenIdentity("262011234567890");
    GivenIdentity("310480123456789");
    GivenGid(2);
    GivenGid(7);
    GivenGid(2);
    EXPECT_EQ(Domestic(), "None");
    EXPECT_EQ(Domestic(), "None");
    EXPECT_EQ(Domestic(), "Domestic");
    EXPECT_EQ(Domestic(), "Domestic");
    EXPECT_EQ(CallCount("sys_getSIMCarrierGID"), 2U);
    EXPECT_EQ(Domestic(), "None");
    EXPECT_EQ(CallCount("sys_getSIMCarrierGID"), 3U);
}

TEST_F(SubscriberCacheTest, EveryIndicatorCountsAsARequest) {
    GivenIdentity("310480123456789");
    GivenGid(2);
    std::string text = "untouched";
    EXPECT_EQ(GetRoamingText(cache, 99, text), 200);
    EXPECT_EQ(text, "untouched");
    EXPECT_EQ(CallCount("sys_getSIMCarrierGID"), 1U);
    EXPECT_EQ(cache.Gid(), 2);
}

TEST_F(SubscriberCacheTest, FailedRefreshAfterAChangeReadsTheGidAgain) {
    GivenIdentity("310480123456789");
    Given("sys_getSubscriberInfo").Returns(41);
    GivenGid(7);
    GivenGid(2);
    EXPECT_EQ(Domestic(), "Domestic");
    EXPECT_EQ(Domestic(), "None");
    EXPECT_EQ(CallCount("sys_getSIMCarrierGID"), 2U);
}

TEST_F(SubscriberCacheTest, FailedRefreshAfterAnUnchangedSubscriberReadsNoGid) {
    GivenIdentity("310480123456789");
    GivenIdentity("310480123456789");
    Given("sys_getSubscriberInfo").Returns(41);
    GivenGid(2);
    for (int request = 0; request < 4; ++request) {
        EXPECT_EQ(Domestic(), "None");
    }
    EXPECT_EQ(CallCount("sys_getSIMCarrierGID"), 1U);
}

TEST_F(SubscriberCacheTest, IdentityOfAFailedRefreshDoesNotCount) {
    GivenIdentity("310480123456789");
    GivenIdentity("310480123456789");
    sys_subscriber_info_t other{};
    SetText(other.identity, "262011234567890");
    Given("sys_getSubscriberInfo").Returns(41).Writes(other);
    GivenIdentity("310480123456789");
    GivenGid(2);
    for (int request = 0; request < 4; ++request) {
        EXPECT_EQ(Domestic(), "None");
    }
    EXPECT_EQ(CallCount("sys_getSIMCarrierGID"), 1U);
}

TEST_F(SubscriberCacheTest, FailedRefreshOfAFreshCacheReadsNoGid) {
    Given("sys_getSubscriberInfo").Returns(41);
    EXPECT_EQ(Domestic(), "Domestic");
    EXPECT_EQ(CallCount("sys_getSIMCarrierGID"), 0U);
}

TEST_F(SubscriberCacheTest, EmptiedIdentityReadsNoGidAndKeepsTheByte) {
    GivenIdentity("310480123456789");
    GivenIdentity("");
    GivenGid(2);
    GivenGid(7);
    EXPECT_EQ(Domestic(), "None");
    EXPECT_EQ(Domestic(), "None");
    EXPECT_EQ(CallCount("sys_getSIMCarrierGID"), 1U);
}

TEST_F(SubscriberCacheTest, SubscriberThatComesBackAfterAnEmptiedIdentityIsAChange) {
    GivenIdentity("310480123456789");
    GivenIdentity("");
    GivenIdentity("310480123456789");
    GivenGid(2);
    GivenGid(7);
    EXPECT_EQ(Domestic(), "None");
    EXPECT_EQ(Domestic(), "None");
    EXPECT_EQ(Domestic(), "Domestic");
    EXPECT_EQ(CallCount("sys_getSIMCarrierGID"), 2U);
}

TEST_F(SubscriberCacheTest, IdentityThatWasNotWrittenIsEmpty) {
    Given("sys_getSubscriberInfo").Returns(SYS_SUCCESS);
    EXPECT_EQ(Domestic(), "Domestic");
    EXPECT_EQ(CallCount("sys_getSIMCarrierGID"), 0U);
}

TEST_F(SubscriberCacheTest, FailedGidReadKeepsTheByteAndIsNotTriedAgain) {
    GivenIdentity("310480123456789");
    GivenIdentity("262011234567890");
    GivenGid(2);
    Given("sys_getSIMCarrierGID").Returns(6).Writes<std::uint8_t>(7).Writes<std::uint8_t>(1);
    EXPECT_EQ(Domestic(), "None");
    EXPECT_EQ(Domestic(), "None");
    EXPECT_EQ(Domestic(), "None");
    EXPECT_EQ(CallCount("sys_getSIMCarrierGID"), 2U);
    EXPECT_EQ(TranscriptText("log 3"),
              Steps({Log(3, kGid + " - sys_getSIMCarrierGID failed, returned error code [6]. Try "
                                   "sysintcli getSIMCarrierGID from command line.")}));
}

TEST_F(SubscriberCacheTest, IdentityMayFillItsFieldAndItsLastCharacterCounts) {
    sys_subscriber_info_t info{};
    const std::string full(sizeof(info.identity), '7');
    ASSERT_EQ(full.size(), 32U);
    SetText(info.identity, full);
    std::fill(std::begin(info.reserved32), std::end(info.reserved32), std::uint8_t{'x'});
    Given("sys_getSubscriberInfo").Writes(info);
    info.reserved32[0] = 'y';
    Given("sys_getSubscriberInfo").Writes(info);
    info.identity[31] = '8';
    Given("sys_getSubscriberInfo").Writes(info);
    GivenGid(2);
    GivenGid(7);
    EXPECT_EQ(Domestic(), "None");
    EXPECT_EQ(Domestic(), "None") << "bytes after the terminator do not count";
    EXPECT_EQ(CallCount("sys_getSIMCarrierGID"), 1U);
    EXPECT_EQ(Domestic(), "Domestic");
    EXPECT_EQ(CallCount("sys_getSIMCarrierGID"), 2U);
}

TEST_F(SubscriberCacheTest, BytesAfterTheTerminatorDoNotCount) {
    sys_subscriber_info_t info{};
    SetText(info.identity, "310480");
    Given("sys_getSubscriberInfo").Writes(info);
    info.identity[31] = 'x';
    Given("sys_getSubscriberInfo").Writes(info);
    GivenGid(2);
    Domestic();
    Domestic();
    EXPECT_EQ(CallCount("sys_getSIMCarrierGID"), 1U);
}

}  // namespace
