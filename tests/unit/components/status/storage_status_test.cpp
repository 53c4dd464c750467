#include <cstdint>
#include <limits>

#include "platform/sysint.h"
#include "tests/unit/components/status/status_group_test.h"

using recording::Failure;
using recording::Given;
using recording::Log;
using recording::TranscriptText;

namespace {

const std::string kSmb = " - void StatusComponent::GetSmbStatus(CTPP::CDT&)";

class StorageStatusTest : public StatusGroupTest {
  protected:
    static void GivenCard(std::uint64_t total, std::uint64_t free) {
        Given("sys_getSDCardInfo").Writes(sys_sd_card_info_t{total, free});
    }

    static void GivenShare(std::uint32_t cardInUse) {
        Given("sys_getSambaShareInfo").Writes(sys_samba_share_info_t{cardInUse, {}});
    }

    static Step CardFailure(int cardCode, int sharingCode) {
        return Failure(kSmb +
                       " sys_getSDCardInfo/ sys_getSambaEnabled failed, returned error "
                       "codes [" +
                       std::to_string(cardCode) + "]/ [" + std::to_string(sharingCode) +
                       "]. Try sysintcli getSDCardInfo/ sysintcli getSambaEnabled from command "
                       "line.");
    }

    std::string Json() {
        component->GetSmbStatus(statusData);
        return ToJson(statusData);
    }
};

TEST_F(StorageStatusTest, SharedCardShowsUsedAndFreeSpace) {
    GivenCard(900, 300);
    Given("sys_getSambaEnabled").Writes(1);
    GivenShare(2);
    EXPECT_EQ(Json(), R"({"statusBarSdCardFreeSpace":"300","statusBarSdCardInUse":2,)"
                      R"("statusBarSdCardStatus":"SmbOn","statusBarSdCardUsedSpace":"600"})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kSmb + " - BEGIN"), "sys_getSDCardInfo()", "sys_getSambaEnabled()",
                     "sys_getSambaShareInfo()", Log(7, kSmb + " - statusBarSdCardInUse is:[2]."),
                     Log(7, kSmb + " - END")}));
}

TEST_F(StorageStatusTest, CardThatIsNotSharedIsOff) {
    GivenCard(900, 300);
    Given("sys_getSambaEnabled").Writes(0);
    GivenShare(0);
    EXPECT_EQ(Json(), R"({"statusBarSdCardFreeSpace":"300","statusBarSdCardInUse":0,)"
                      R"("statusBarSdCardStatus":"SmbOff","statusBarSdCardUsedSpace":"600"})");
}

TEST_F(StorageStatusTest, AnyOtherSharingValueThanZeroIsOn) {
    GivenCard(1, 1);
    Given("sys_getSambaEnabled").Writes(-5);
    GivenShare(0);
    EXPECT_EQ(Json(), R"({"statusBarSdCardFreeSpace":"1","statusBarSdCardInUse":0,)"
                      R"("statusBarSdCardStatus":"SmbOn","statusBarSdCardUsedSpace":"0"})");
}

TEST_F(StorageStatusTest, SpaceHasTheFullRangeOf64Bits) {
    GivenCard(std::numeric_limits<std::uint64_t>::max(), 0);
    Given("sys_getSambaEnabled").Writes(1);
    GivenShare(std::numeric_limits<std::uint32_t>::max());
    EXPECT_EQ(Json(), R"({"statusBarSdCardFreeSpace":"0","statusBarSdCardInUse":4294967295,)"
                      R"("statusBarSdCardStatus":"SmbOn",)"
                      R"("statusBarSdCardUsedSpace":"18446744073709551615"})");
}

TEST_F(StorageStatusTest, MoreFreeThanTotalSpaceWraps) {
    GivenCard(1, 2);
    Given("sys_getSambaEnabled").Writes(1);
    GivenShare(0);
    EXPECT_EQ(Json(), R"({"statusBarSdCardFreeSpace":"2","statusBarSdCardInUse":0,)"
                      R"("statusBarSdCardStatus":"SmbOn",)"
                      R"("statusBarSdCardUsedSpace":"18446744073709551615"})");
}

TEST_F(StorageStatusTest, RecordsThatAreNotWrittenAreZero) {
    Given("sys_getSDCardInfo").Returns(SYS_SUCCESS);
    Given("sys_getSambaEnabled").Returns(SYS_SUCCESS);
    Given("sys_getSambaShareInfo").Returns(SYS_SUCCESS);
    EXPECT_EQ(Json(), R"({"statusBarSdCardFreeSpace":"0","statusBarSdCardInUse":0,)"
                      R"("statusBarSdCardStatus":"SmbOff","statusBarSdCardUsedSpace":"0"})");
}

TEST_F(StorageStatusTest, EmptySlotIsNotMountedAndHasNoSpace) {
    Given("sys_getSDCardInfo").Returns(2001).Writes(sys_sd_card_info_t{900, 300});
    Given("sys_getSambaEnabled").Writes(1);
    GivenShare(0);
    EXPECT_EQ(Json(), R"({"statusBarSdCardInUse":0,"statusBarSdCardStatus":"SdNotMounted"})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kSmb + " - BEGIN"), "sys_getSDCardInfo()", "sys_getSambaEnabled()",
                     "sys_getSambaShareInfo()", Log(7, kSmb + " - statusBarSdCardInUse is:[0]."),
                     Log(7, kSmb + " - END")}));
}

TEST_F(StorageStatusTest, EmptySlotWithFailedSharingStateIsAFailureWithEmptyStatus) {
    Given("sys_getSDCardInfo").Returns(2001);
    Given("sys_getSambaEnabled").Returns(6);
    GivenShare(1);
    EXPECT_EQ(Json(), R"({"statusBarSdCardInUse":1,"statusBarSdCardStatus":""})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kSmb + " - BEGIN"), "sys_getSDCardInfo()", "sys_getSambaEnabled()",
                     CardFailure(2001, 6), "sys_getSambaShareInfo()",
                     Log(7, kSmb + " - statusBarSdCardInUse is:[1]."), Log(7, kSmb + " - END")}));
}

TEST_F(StorageStatusTest, FailedCardStateIsAFailureAndSharingIsStillRead) {
    Given("sys_getSDCardInfo").Returns(2000).Writes(sys_sd_card_info_t{900, 300});
    Given("sys_getSambaEnabled").Writes(1);
    GivenShare(1);
    EXPECT_EQ(Json(), R"({"statusBarSdCardInUse":1,"statusBarSdCardStatus":""})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kSmb + " - BEGIN"), "sys_getSDCardInfo()", "sys_getSambaEnabled()",
                     CardFailure(2000, 0), "sys_getSambaShareInfo()",
                     Log(7, kSmb + " - statusBarSdCardInUse is:[1]."), Log(7, kSmb + " - END")}));
}

TEST_F(StorageStatusTest, FailedSharingStateIsAFailureEvenWithACard) {
    GivenCard(900, 300);
    Given("sys_getSambaEnabled").Returns(6).Writes(1);
    GivenShare(1);
    EXPECT_EQ(Json(), R"({"statusBarSdCardInUse":1,"statusBarSdCardStatus":""})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kSmb + " - BEGIN"), "sys_getSDCardInfo()", "sys_getSambaEnabled()",
                     CardFailure(0, 6), "sys_getSambaShareInfo()",
                     Log(7, kSmb + " - statusBarSdCardInUse is:[1]."), Log(7, kSmb + " - END")}));
}

TEST_F(StorageStatusTest, FailedShareInformationLeavesItsKeyOut) {
    GivenCard(900, 300);
    Given("sys_getSambaEnabled").Writes(1);
    Given("sys_getSambaShareInfo").Returns(8).Writes(sys_samba_share_info_t{1, {}});
    EXPECT_EQ(Json(), R"({"statusBarSdCardFreeSpace":"300","statusBarSdCardStatus":"SmbOn",)"
                      R"("statusBarSdCardUsedSpace":"600"})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kSmb + " - BEGIN"), "sys_getSDCardInfo()", "sys_getSambaEnabled()",
                     "sys_getSambaShareInfo()",
                     Failure(kSmb + " - sys_getSambaShareInfo failed with error code: 8, try "
                                    "sysintcli getSambaShareInfo from command line"),
                     Log(7, kSmb + " - END")}));
}

}  // namespace
