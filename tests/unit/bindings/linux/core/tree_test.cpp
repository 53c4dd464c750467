// A value of another type than expected is not told.
#include "bindings/linux/bus/tree.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;

const json kTree = {{"number", -7},    {"large", std::numeric_limits<std::uint64_t>::max()},
                    {"real", 1.5},     {"infinite", INFINITY},
                    {"text", "seven"}, {"yes", true},
                    {"list", {1, 2}}};

TEST(Tree, ValuesOfTheExpectedTypeAreRead) {
    EXPECT_EQ(binding::Number(kTree, "number"), -7);
    EXPECT_EQ(binding::Real(kTree, "real"), 1.5);
    EXPECT_EQ(binding::Real(kTree, "number"), -7.0);
    EXPECT_EQ(binding::Text(kTree, "text"), "seven");
    EXPECT_EQ(binding::Boolean(kTree, "yes"), true);
}

TEST(Tree, OtherValuesAreNotTold) {
    for (const char* const name : {"text", "yes", "list", "real", "missing", "large"}) {
        EXPECT_EQ(binding::Number(kTree, name), std::nullopt) << name;
    }
    for (const char* const name : {"number", "yes", "list", "missing"}) {
        EXPECT_EQ(binding::Text(kTree, name), std::nullopt) << name;
    }
    EXPECT_EQ(binding::Boolean(kTree, "number"), std::nullopt);
    EXPECT_EQ(binding::Real(kTree, "infinite"), std::nullopt);
}

TEST(Tree, WhatIsNoObjectHasNoMembers) {
    EXPECT_TRUE(binding::Member(json::array({1}), "number").is_null());
    EXPECT_TRUE(binding::Member(json("number"), "number").is_null());
    EXPECT_TRUE(binding::Member(json(), "number").is_null());
}

}  // namespace
