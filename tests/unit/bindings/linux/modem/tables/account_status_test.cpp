// Account states in protocol configuration options.
#include "bindings/linux/modem/tables/account_status.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "platform/sysint.h"

namespace {

using binding::AccountStatusOf;
using nlohmann::json;

constexpr bool kComplete = true;
constexpr bool kPartial = false;

/// A SIM of the network 262 01, which has no third digit, and one of 310 260.
constexpr const char* kImsi = "262011234567890";
constexpr const char* kLongImsi = "310260123456789";

json Pco(const json& bytes, bool complete = kPartial) {
    return json::array({json::array({1, complete, bytes})});
}

/// The operator's container with the network 262 01 and @p byte.
json Container(int byte) {
    return {0xFF, 0x00, 4, 0x62, 0xF2, 0x10, byte};
}

TEST(AccountStatus, IsTheByteAfterTheNumberOfTheNetwork) {
    EXPECT_EQ(AccountStatusOf(Pco(Container(0)), kImsi), 0);
    EXPECT_EQ(AccountStatusOf(Pco(Container(2)), kImsi), SYS_ACCOUNT_RESTRICTED);
    EXPECT_EQ(AccountStatusOf(Pco(Container(3)), kImsi), SYS_ACCOUNT_OUT_OF_CREDIT);
    EXPECT_EQ(AccountStatusOf(Pco(Container(5)), kImsi), SYS_ACCOUNT_NOT_ACTIVE);
    EXPECT_EQ(AccountStatusOf(Pco(Container(4)), kImsi), std::nullopt);
}

TEST(AccountStatus, NetworkMayHaveSixDigits) {
    EXPECT_EQ(AccountStatusOf(Pco({0xFF, 0x00, 4, 0x13, 0x00, 0x62, 3}), kLongImsi), 3);
}

TEST(AccountStatus, AnotherNetworkSaysNothingOfThisSim) {
    EXPECT_EQ(AccountStatusOf(Pco(Container(3)), "262021234567890"), std::nullopt);
    EXPECT_EQ(AccountStatusOf(Pco(Container(3)), "2620"), std::nullopt);
    EXPECT_EQ(AccountStatusOf(Pco(Container(3)), ""), std::nullopt);
}

TEST(AccountStatus, StandsAmongOtherContainers) {
    // A DNS server before it, and a second session.
    const json bytes = {0x00, 0x0D, 4, 10, 0, 0, 1, 0xFF, 0x00, 4, 0x62, 0xF2, 0x10, 5};
    EXPECT_EQ(AccountStatusOf(Pco(bytes), kImsi), SYS_ACCOUNT_NOT_ACTIVE);
    json sessions = Pco({0x00, 0x0D, 4, 10, 0, 0, 1});
    sessions.push_back(Pco(Container(3)).front());
    EXPECT_EQ(AccountStatusOf(sessions, kImsi), SYS_ACCOUNT_OUT_OF_CREDIT);
}

TEST(AccountStatus, CompleteOptionsHaveAHead) {
    const json bytes = {0x80, 0xFF, 0x00, 4, 0x62, 0xF2, 0x10, 3};
    EXPECT_EQ(AccountStatusOf(Pco(bytes, kComplete), kImsi), SYS_ACCOUNT_OUT_OF_CREDIT);
    json element = {0x27, 8};
    element.insert(element.end(), bytes.begin(), bytes.end());
    EXPECT_EQ(AccountStatusOf(Pco(element, kComplete), kImsi), SYS_ACCOUNT_OUT_OF_CREDIT);
}

TEST(AccountStatus, IsNotToldByWhatIsCutOrNoListOfOptions) {
    const json whole = {0x27, 8, 0x80, 0xFF, 0x00, 4, 0x62, 0xF2, 0x10, 3};
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const json cut(std::vector<json>(whole.begin(), whole.begin() + static_cast<long>(size)));
        EXPECT_EQ(AccountStatusOf(Pco(cut, kComplete), kImsi), std::nullopt) << size;
    }
    EXPECT_EQ(AccountStatusOf(Pco({0xFF, 0x00, 4, 0x62, 0xF2, 0x10, 256}), kImsi), std::nullopt);
    EXPECT_EQ(AccountStatusOf(Pco({0xFF, 0x00, 4, 0x62, 0xF2, 0x10, "3"}), kImsi), std::nullopt);
    EXPECT_EQ(AccountStatusOf(Pco("bytes"), kImsi), std::nullopt);
    EXPECT_EQ(AccountStatusOf(Pco({0xFF, 0x00, 0}), kImsi), std::nullopt);
    EXPECT_EQ(AccountStatusOf(json::array({1, json::array({1, 2}), nullptr}), kImsi), std::nullopt);
    EXPECT_EQ(AccountStatusOf(json("list"), kImsi), std::nullopt);
}

}  // namespace
