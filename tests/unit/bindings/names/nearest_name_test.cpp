// The name that is suggested for a wrong name.
#include "bindings/names/nearest_name.h"

#include <gtest/gtest.h>

namespace {

using binding::NearestName;
using binding::Suggestion;

TEST(NearestName, TakesTheFewestChanges) {
    const std::vector<std::string> known = {"getSIMStatus", "getGPSStatus", "getNumSims"};
    EXPECT_EQ(NearestName("getGPStatus", known), "getGPSStatus");
    EXPECT_EQ(NearestName("getSIMMStatus", known), "getSIMStatus");
    EXPECT_EQ(NearestName("getNumSlms", known), "getNumSims");
    EXPECT_EQ(NearestName("getNumSims", known), "getNumSims");
}

TEST(NearestName, IgnoresCase) {
    EXPECT_EQ(NearestName("GETSIMSTATUS", {"getGPSStatus", "getSIMStatus"}), "getSIMStatus");
}

TEST(NearestName, CountsASwapOfNeighboursAsOneChange) {
    EXPECT_EQ(NearestName("shwo", {"set", "show", "play"}), "show");
    EXPECT_EQ(NearestName("pic", {"snr", "pci"}), "pci");
    EXPECT_EQ(NearestName("icp", {"pci"}), "");
    EXPECT_EQ(NearestName("SRN", {"snr"}), "snr");
}

TEST(NearestName, TakesTheFirstOfEquallyNearNames) {
    EXPECT_EQ(NearestName("pin3", {"pin1", "pin2"}), "pin1");
}

TEST(NearestName, SuggestsNoNameOfWhichHalfIsDifferent) {
    EXPECT_EQ(NearestName("abcd", {"abxy"}), "");
    EXPECT_EQ(NearestName("abcd", {"abcx"}), "abcx");
    EXPECT_EQ(NearestName("", {"a"}), "");
    EXPECT_EQ(NearestName("a", {}), "");
    EXPECT_EQ(NearestName(std::string(100'000, 'a'), {std::string(99'999, 'a')}), "");
}

TEST(NearestName, IsSuggestedAfterAComplaint) {
    EXPECT_EQ(Suggestion("a"), "; did you mean a?");
    EXPECT_EQ(Suggestion(""), "");
}

}  // namespace
