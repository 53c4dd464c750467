#include "framework/acl/acl_component.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "bindings/recording/recording.h"
#include "tests/support/json.h"
#include "tests/support/transcript.h"

using recording::CallCount;
using recording::Failure;
using recording::Given;
using recording::Log;
using recording::TranscriptText;

namespace {

const std::string kLoad = " - void AclComponent::LoadOneAclSetting(const string&, const string&)";
const std::string kPopulate = " - void AclComponent::PopulateAclSettings(CTPP::CDT&)";
const std::string kFieldStatus = " - bool AclComponent::GetFieldStatus(const string&)";
const std::string kAppLevel = " - void AclComponent::GetAppLevelAclSetting(char*, int*, int*)";
const std::string kGenerate =
    " - void AclComponent::GenerateFieldACLData(CTPP::CDT&, std::__cxx11::string, bool, bool)";

class AclComponentTest : public testing::Test {
  protected:
    void SetUp() override { recording::Reset(); }

    static void GivenField(int show, int lock) {
        Given("sys_getUIFieldShowEnabled").Writes(show);
        Given("sys_getUIFieldLockEnabled").Writes(lock);
    }

    static void GivenApp(int display, int write) {
        Given("sys_getUIAppDisplayEnabled").Writes(display);
        Given("sys_getUIAppWriteEnabled").Writes(write);
    }

    static void GivenAgents(int wdcp, int halyard) {
        Given("sys_getWDCPCarrierEnabled").Writes(wdcp);
        Given("sys_getHalyardAgentCarrierEnabled").Writes(halyard);
    }

    /// Everything that the component has stored.
    std::string Settings() {
        CTPP::CDT node(CTPP::CDT::HASH_VAL);
        acl.PopulateAclSettings(node);
        return ToJson(node);
    }

    /// What GenerateFieldACLData writes for a field that the device and the page support.
    std::string Generated(const std::string& field) {
        CTPP::CDT node;
        acl.GenerateFieldACLData(node, field, true, true);
        return ToJson(node);
    }

    AclComponent acl;
    std::string app = "wwan";
    int hidden = -1;
    int locked = -1;
};

TEST_F(AclComponentTest, ShownFieldThatIsNotLocked) {
    GivenField(1, 0);
    acl.LoadOneAclSetting("apn", "WwanApn");
    EXPECT_EQ(TranscriptText(), Steps({Log(7, kLoad + " - BEGIN"), "sys_getUIFieldShowEnabled(apn)",
                                       Log(7, kLoad + " - Acl show status for [apn] is [1]"),
                                       "sys_getUIFieldLockEnabled(apn)",
                                       Log(7, kLoad + " - Acl locked status for [apn] is [1]"),
                                       Log(7, kLoad + " - END")}));
    EXPECT_EQ(Settings(), R"({"WwanApnHideOrLocked":0,"WwanApnLocked":0,"WwanApnShow":1})");
}

TEST_F(AclComponentTest, LockedFieldIsHiddenOrLocked) {
    GivenField(1, 1);
    acl.LoadOneAclSetting("apn", "Apn");
    EXPECT_EQ(Settings(), R"({"ApnHideOrLocked":1,"ApnLocked":1,"ApnShow":1})");
}

TEST_F(AclComponentTest, HiddenFieldIsHiddenOrLockedWhateverItsLock) {
    GivenField(0, 0);
    acl.LoadOneAclSetting("apn", "Apn");
    EXPECT_EQ(Settings(), R"({"ApnHideOrLocked":1,"ApnLocked":0,"ApnShow":0})");
    recording::Reset();
    GivenField(0, 1);
    acl.LoadOneAclSetting("apn", "Apn");
    EXPECT_EQ(Settings(), R"({"ApnHideOrLocked":1,"ApnLocked":1,"ApnShow":0})");
}

TEST_F(AclComponentTest, LineAboutTheLockCarriesTheShowValue) {
    GivenField(0, 7);
    acl.LoadOneAclSetting("apn", "Apn");
    EXPECT_EQ(
        TranscriptText("log 7"),
        Steps({Log(7, kLoad + " - BEGIN"), Log(7, kLoad + " - Acl show status for [apn] is [0]"),
               Log(7, kLoad + " - Acl locked status for [apn] is [0]"), Log(7, kLoad + " - END")}));
}

TEST_F(AclComponentTest, AnyOtherValueThanZeroIsRememberedAsTrue) {
    for (const int value : {2, -1, 256, std::numeric_limits<int>::min()}) {
        recording::Reset();
        GivenField(value, value);
        acl.LoadOneAclSetting("apn", "Apn");
        EXPECT_EQ(Settings(), R"({"ApnHideOrLocked":1,"ApnLocked":1,"ApnShow":1})");
    }
}

TEST_F(AclComponentTest, FieldWhoseSettingsCannotBeReadIsShownAndNotLocked) {
    Given("sys_getUIFieldShowEnabled").Returns(11);
    Given("sys_getUIFieldLockEnabled").Returns(12);
    acl.LoadOneAclSetting("apn", "Apn");
    EXPECT_EQ(
        TranscriptText(),
        Steps({Log(7, kLoad + " - BEGIN"), "sys_getUIFieldShowEnabled(apn)",
               Failure(kLoad + " - sys_getUIFieldShowEnabled failed, returned error code 11. Try "
                               "sysintcli getUIFieldShowEnabled from command line."),
               "sys_getUIFieldLockEnabled(apn)",
               Failure(kLoad + " - sys_getUIFieldLockEnabled failed, returned error code 12. Try "
                               "sysintcli getUIFieldLockEnabled from command line."),
               Log(7, kLoad + " - END")}));
    EXPECT_EQ(Settings(), R"({"ApnHideOrLocked":0,"ApnLocked":0,"ApnShow":1})");
}

TEST_F(AclComponentTest, ValuesThatFailedCallsWroteCount) {
    Given("sys_getUIFieldShowEnabled").Returns(11).Writes(0);
    Given("sys_getUIFieldLockEnabled").Returns(12).Writes(1);
    acl.LoadOneAclSetting("apn", "Apn");
    EXPECT_EQ(Settings(), R"({"ApnHideOrLocked":1,"ApnLocked":1,"ApnShow":0})");
}

TEST_F(AclComponentTest, OneFailedCallLeavesTheOtherAlone) {
    Given("sys_getUIFieldShowEnabled").Returns(11);
    Given("sys_getUIFieldLockEnabled").Writes(1);
    acl.LoadOneAclSetting("apn", "Apn");
    EXPECT_EQ(Settings(), R"({"ApnHideOrLocked":1,"ApnLocked":1,"ApnShow":1})");
    recording::Reset();
    Given("sys_getUIFieldShowEnabled").Writes(0);
    Given("sys_getUIFieldLockEnabled").Returns(12);
    acl.LoadOneAclSetting("apn", "Apn");
    EXPECT_EQ(Settings(), R"({"ApnHideOrLocked":1,"ApnLocked":0,"ApnShow":0})");
}

TEST_F(AclComponentTest, LoadingAFieldAgainReplacesItsKeysAndOnlyThose) {
    GivenField(1, 1);
    acl.LoadOneAclSetting("apn", "B");
    acl.LoadOneAclSetting("dns", "A");
    recording::Reset();
    GivenField(0, 0);
    acl.LoadOneAclSetting("apn", "B");
    EXPECT_EQ(Settings(), R"({"AHideOrLocked":1,"ALocked":1,"AShow":1,)"
                          R"("BHideOrLocked":1,"BLocked":0,"BShow":0})");
}

TEST_F(AclComponentTest, PopulatingWritesIntegersBesideWhatTheNodeHolds) {
    GivenField(1, 0);
    acl.LoadOneAclSetting("apn", "Apn");
    recording::Reset();
    CTPP::CDT node;
    node["other"] = "text";
    acl.PopulateAclSettings(node);
    EXPECT_EQ(ToJson(node), R"({"ApnHideOrLocked":0,"ApnLocked":0,"ApnShow":1,"other":"text"})");
    EXPECT_EQ(node.GetCDT("ApnShow").GetType(), CTPP::CDT::INT_VAL);
    EXPECT_EQ(node.GetCDT("ApnLocked").GetType(), CTPP::CDT::INT_VAL);
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kPopulate + " - BEGIN"), Log(7, kPopulate + " - END")}));
}

TEST_F(AclComponentTest, NothingRememberedLeavesTheNodeAlone) {
    CTPP::CDT node;
    acl.PopulateAclSettings(node);
    EXPECT_EQ(node.GetType(), CTPP::CDT::UNDEF);
}

TEST_F(AclComponentTest, FieldStatusIsWhatIsRemembered) {
    GivenField(1, 0);
    acl.LoadOneAclSetting("apn", "Apn");
    recording::Reset();
    EXPECT_TRUE(acl.GetFieldStatus("ApnShow"));
    EXPECT_FALSE(acl.GetFieldStatus("ApnLocked"));
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kFieldStatus + " - BEGIN"), Log(7, kFieldStatus + " - BEGIN")}));
}

TEST_F(AclComponentTest, UnknownFieldStatusIsFalseAndRemembered) {
    EXPECT_FALSE(acl.GetFieldStatus("ApnShow"));
    EXPECT_EQ(Settings(), R"({"ApnShow":0})");
}

TEST_F(AclComponentTest, AppSettingsAreThePlatformsOwnValues) {
    GivenAgents(1, 0);
    GivenApp(5, -2);
    acl.GetAppLevelAclSetting(app.data(), &hidden, &locked);
    EXPECT_EQ(hidden, 5);
    EXPECT_EQ(locked, -2);
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kAppLevel + " - BEGIN"), "sys_getWDCPCarrierEnabled()",
                     "sys_getHalyardAgentCarrierEnabled()", "sys_getUIAppDisplayEnabled(wwan)",
                     "sys_getUIAppWriteEnabled(wwan)",
                     Log(7, kAppLevel + " - App:wwan, Hidden:5, Locked:-2"),
                     Log(7, kAppLevel + " - END\n")}));
}

TEST_F(AclComponentTest, EitherAgentMakesTheAppSettingsApply) {
    GivenAgents(0, -1);
    GivenApp(1, 1);
    acl.GetAppLevelAclSetting(app.data(), &hidden, &locked);
    EXPECT_EQ(hidden, 1);
    EXPECT_EQ(locked, 1);
}

TEST_F(AclComponentTest, WithoutAgentsTheAppIsNeitherHiddenNorLocked) {
    GivenAgents(0, 0);
    GivenApp(1, 1);
    acl.GetAppLevelAclSetting(app.data(), &hidden, &locked);
    EXPECT_EQ(hidden, 0);
    EXPECT_EQ(locked, 0);
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kAppLevel + " - BEGIN"), "sys_getWDCPCarrierEnabled()",
                     "sys_getHalyardAgentCarrierEnabled()", Log(7, kAppLevel + " - END\n")}));
}

TEST_F(AclComponentTest, AgentsThatCannotBeReadCountAsOnForTheApp) {
    Given("sys_getWDCPCarrierEnabled").Returns(21);
    Given("sys_getHalyardAgentCarrierEnabled").Returns(22);
    GivenApp(1, 0);
    acl.GetAppLevelAclSetting(app.data(), &hidden, &locked);
    EXPECT_EQ(hidden, 1);
    EXPECT_EQ(locked, 0);
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kAppLevel + " - BEGIN"), "sys_getWDCPCarrierEnabled()",
                     Failure(kAppLevel +
                             " - sys_getWDCPCarrierEnabled failed, returned error code 21. Try "
                             "sysintcli getWDCPCarrierEnabled from command line."),
                     "sys_getHalyardAgentCarrierEnabled()",
                     Failure(kAppLevel +
                             " sys_getHalyardAgentCarrierEnabled failed, returned error code 22. "
                             "Try sysintcli getHalyardAgentCarrierEnabled from command line."),
                     "sys_getUIAppDisplayEnabled(wwan)", "sys_getUIAppWriteEnabled(wwan)",
                     Log(7, kAppLevel + " - App:wwan, Hidden:1, Locked:0"),
                     Log(7, kAppLevel + " - END\n")}));
}

TEST_F(AclComponentTest, AgentsThatFailedButWroteZeroAreOffForTheApp) {
    Given("sys_getWDCPCarrierEnabled").Returns(21).Writes(0);
    Given("sys_getHalyardAgentCarrierEnabled").Returns(22).Writes(0);
    GivenApp(1, 1);
    acl.GetAppLevelAclSetting(app.data(), &hidden, &locked);
    EXPECT_EQ(hidden, 0);
    EXPECT_EQ(locked, 0);
    EXPECT_EQ(CallCount("sys_getUIAppDisplayEnabled"), 0U);
    EXPECT_EQ(CallCount("sys_getUIAppWriteEnabled"), 0U);
}

TEST_F(AclComponentTest, AppSettingsThatCannotBeReadAreZero) {
    GivenAgents(1, 1);
    Given("sys_getUIAppDisplayEnabled").Returns(31);
    Given("sys_getUIAppWriteEnabled").Returns(32);
    acl.GetAppLevelAclSetting(app.data(), &hidden, &locked);
    EXPECT_EQ(hidden, 0);
    EXPECT_EQ(locked, 0);
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kAppLevel + " - BEGIN"), "sys_getWDCPCarrierEnabled()",
                     "sys_getHalyardAgentCarrierEnabled()", "sys_getUIAppDisplayEnabled(wwan)",
                     Failure(kAppLevel +
                             " - sys_getUIAppDisplayEnabled failed, returned error code 31. Try "
                             "sysintcli getUIAppDisplayEnabled from command line."),
                     "sys_getUIAppWriteEnabled(wwan)",
                     Failure(kAppLevel +
                             " - sys_getUIAppWriteEnabled failed, returned error code 32. Try "
                             "sysintcli getUIAppWriteEnabled from command line."),
                     Log(7, kAppLevel + " - App:wwan, Hidden:0, Locked:0"),
                     Log(7, kAppLevel + " - END\n")}));
}

TEST_F(AclComponentTest, AppSettingsThatFailedCallsWroteArePassedOn) {
    GivenAgents(1, 1);
    Given("sys_getUIAppDisplayEnabled").Returns(31).Writes(3);
    Given("sys_getUIAppWriteEnabled").Returns(32).Writes(4);
    acl.GetAppLevelAclSetting(app.data(), &hidden, &locked);
    EXPECT_EQ(hidden, 3);
    EXPECT_EQ(locked, 4);
}

TEST_F(AclComponentTest, AppResultThatIsNotWantedMayBeLeftOut) {
    GivenAgents(1, 1);
    GivenApp(5, 6);
    acl.GetAppLevelAclSetting(app.data(), nullptr, &locked);
    acl.GetAppLevelAclSetting(app.data(), &hidden, nullptr);
    EXPECT_EQ(hidden, 5);
    EXPECT_EQ(locked, 6);
    const std::string line = Log(7, kAppLevel + " - App:");
    EXPECT_EQ(TranscriptText(line),
              Steps({line + "wwan, Hidden:5, Locked:6", line + "wwan, Hidden:5, Locked:6"}));
}

TEST_F(AclComponentTest, AppWithoutANameIsAskedForAsItIsAndLoggedAsTheEmptyText) {
    GivenAgents(1, 0);
    GivenApp(1, 0);
    acl.GetAppLevelAclSetting(nullptr, &hidden, &locked);
    EXPECT_EQ(TranscriptText("sys_getUIApp"),
              Steps({"sys_getUIAppDisplayEnabled(no name)", "sys_getUIAppWriteEnabled(no name)"}));
    EXPECT_THAT(recording::Transcript(),
                testing::Contains(Log(7, kAppLevel + " - App:, Hidden:1, Locked:0")));
}

TEST_F(AclComponentTest, SingleAgentThatCannotBeReadCountsAsOn) {
    const std::string agents[] = {"sys_getWDCPCarrierEnabled", "sys_getHalyardAgentCarrierEnabled"};
    for (const std::string& failing : agents) {
        recording::Reset();
        for (const std::string& agent : agents) {
            if (agent == failing) {
                Given(agent).Returns(21);
            } else {
                Given(agent).Writes(0);
            }
        }
        GivenApp(1, 1);
        GivenField(0, 1);
        acl.GetAppLevelAclSetting(app.data(), &hidden, &locked);
        EXPECT_EQ(hidden, 1) << failing;
        EXPECT_EQ(Generated("apn"), R"({"apnLocked":1,"apnShow":0})") << failing;
    }
}

TEST_F(AclComponentTest, GeneratedFieldHasThePlatformsOwnValues) {
    GivenAgents(0, 1);
    GivenField(2, -1);
    CTPP::CDT node;
    node["other"] = 1;
    acl.GenerateFieldACLData(node, "apn", true, true);
    EXPECT_EQ(ToJson(node), R"({"apnLocked":-1,"apnShow":2,"other":1})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kGenerate + " - BEGIN field[apn] featureSupport[1] uiSupport[1]"),
                     "sys_getWDCPCarrierEnabled()", "sys_getHalyardAgentCarrierEnabled()",
                     "sys_getUIFieldShowEnabled(apn)", "sys_getUIFieldLockEnabled(apn)",
                     Log(7, kGenerate + " - App:apn, Show:2, Locked:-1"),
                     Log(7, kGenerate + " - END show[2] locked[-1]\n")}));
}

TEST_F(AclComponentTest, GeneratedFieldIsNotRemembered) {
    GivenAgents(1, 1);
    GivenField(1, 1);
    Generated("apn");
    EXPECT_EQ(Settings(), "{}");
}

TEST_F(AclComponentTest, FieldThatIsNotSupportedIsHiddenAndLockedWithoutAskingThePlatform) {
    struct Support {
        bool feature;
        bool ui;
        const char* logged;
    };
    for (const Support& support : {Support{true, false, "featureSupport[1] uiSupport[0]"},
                                   Support{false, true, "featureSupport[0] uiSupport[1]"},
                                   Support{false, false, "featureSupport[0] uiSupport[0]"}}) {
        recording::Reset();
        GivenAgents(1, 1);
        GivenField(1, 0);
        CTPP::CDT node;
        acl.GenerateFieldACLData(node, "apn", support.feature, support.ui);
        EXPECT_EQ(ToJson(node), R"({"apnLocked":1,"apnShow":0})");
        EXPECT_EQ(TranscriptText(),
                  Steps({Log(7, kGenerate + " - BEGIN field[apn] " + support.logged),
                         Log(7, kGenerate + " - END show[0] locked[1]\n")}));
    }
}

TEST_F(AclComponentTest, WithoutAgentsAGeneratedFieldIsShownAndNotLocked) {
    GivenAgents(0, 0);
    GivenField(0, 1);
    EXPECT_EQ(Generated("apn"), R"({"apnLocked":0,"apnShow":1})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kGenerate + " - BEGIN field[apn] featureSupport[1] uiSupport[1]"),
                     "sys_getWDCPCarrierEnabled()", "sys_getHalyardAgentCarrierEnabled()",
                     Log(7, kGenerate + " - END show[1] locked[0]\n")}));
}

TEST_F(AclComponentTest, EitherAgentMakesTheSettingsOfAGeneratedFieldApply) {
    GivenAgents(1, 0);
    GivenField(0, 1);
    EXPECT_EQ(Generated("apn"), R"({"apnLocked":1,"apnShow":0})");
}

TEST_F(AclComponentTest, GeneratedFieldOfWhichNothingCanBeReadIsShownAndNotLocked) {
    Given("sys_getWDCPCarrierEnabled").Returns(21);
    Given("sys_getHalyardAgentCarrierEnabled").Returns(22);
    Given("sys_getUIFieldShowEnabled").Returns(11);
    Given("sys_getUIFieldLockEnabled").Returns(12);
    EXPECT_EQ(Generated("apn"), R"({"apnLocked":0,"apnShow":1})");
    EXPECT_EQ(
        TranscriptText(),
        Steps({Log(7, kGenerate + " - BEGIN field[apn] featureSupport[1] uiSupport[1]"),
               "sys_getWDCPCarrierEnabled()",
               Failure(kGenerate + " sys_getWDCPCarrierEnabled failed, returned error code 21. Try "
                                   "sysintcli getWDCPCarrierEnabled from command line."),
               "sys_getHalyardAgentCarrierEnabled()",
               Failure(kGenerate +
                       " sys_getHalyardAgentCarrierEnabled failed, returned error code 22. "
                       "Try sysintcli getHalyardAgentCarrierEnabled from command line."),
               "sys_getUIFieldShowEnabled(apn)",
               Failure(kGenerate +
                       " sys_getUIFieldShowEnabled(apn) failed, returned error code 11. Try "
                       "sysintcli getUIFieldShowEnabled from command line."),
               "sys_getUIFieldLockEnabled(apn)",
               Failure(kGenerate +
                       " sys_getUIFieldLockEnabled(apn) failed, returned error code 12. Try "
                       "sysintcli getUIFieldLockEnabled from command line."),
               Log(7, kGenerate + " - App:apn, Show:1, Locked:0"),
               Log(7, kGenerate + " - END show[1] locked[0]\n")}));
}

TEST_F(AclComponentTest, ValuesThatFailedCallsWroteCountForAGeneratedField) {
    GivenAgents(1, 1);
    Given("sys_getUIFieldShowEnabled").Returns(11).Writes(0);
    Given("sys_getUIFieldLockEnabled").Returns(12).Writes(3);
    EXPECT_EQ(Generated("apn"), R"({"apnLocked":3,"apnShow":0})");
}

TEST_F(AclComponentTest, AgentsThatFailedButWroteZeroAreOffForAGeneratedField) {
    Given("sys_getWDCPCarrierEnabled").Returns(21).Writes(0);
    Given("sys_getHalyardAgentCarrierEnabled").Returns(22).Writes(0);
    GivenField(0, 1);
    EXPECT_EQ(Generated("apn"), R"({"apnLocked":0,"apnShow":1})");
    EXPECT_EQ(CallCount("sys_getUIFieldShowEnabled"), 0U);
    EXPECT_EQ(CallCount("sys_getUIFieldLockEnabled"), 0U);
}

}  // namespace
