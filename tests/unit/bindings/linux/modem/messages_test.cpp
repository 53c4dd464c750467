#include "bindings/linux/modem/messages.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace {

using binding::Message;
using binding::MessagePaths;
using binding::ReadMessages;
using nlohmann::json;

json Sms(const char* text) {
    return {{"org.freedesktop.ModemManager1.Sms",
             {{"State", 3},
              {"PduType", 1},
              {"Number", "+15550123"},
              {"Timestamp", "2026-11-22T15:04:05+01"},
              {"Text", text},
              {"Data", json::array()}}}};
}

json& Properties(json& tree, const char* path) {
    return tree[path]["org.freedesktop.ModemManager1.Sms"];
}

TEST(Messages, WhatHasBeenReceivedIsAMessage) {
    const json tree = {{"/sms/0", Sms("Hello")}};
    const auto messages = ReadMessages(tree, {"/sms/0"}, {});
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].sender, "+15550123");
    EXPECT_EQ(messages[0].time, "2026-11-22T15:04:05+01");
    EXPECT_EQ(messages[0].text, "Hello");
    EXPECT_EQ(messages[0].key.size(), 64U);
    EXPECT_FALSE(messages[0].isRead);
}

TEST(Messages, WhatIsSentIncompleteOrAReportIsNone) {
    for (const std::int64_t state : {0, 1, 2, 4, 5}) {
        json tree = {{"/sms/0", Sms("Hello")}};
        Properties(tree, "/sms/0")["State"] = state;
        EXPECT_TRUE(ReadMessages(tree, {"/sms/0"}, {}).empty()) << state;
    }
    for (const std::int64_t type : {0, 3, 33, 34, 35, 36, 37}) {
        json tree = {{"/sms/0", Sms("Hello")}};
        Properties(tree, "/sms/0")["PduType"] = type;
        EXPECT_TRUE(ReadMessages(tree, {"/sms/0"}, {}).empty()) << type;
    }
}

TEST(Messages, AMessageIsKnownAgainUnderAnotherPath) {
    const json before = {{"/sms/0", Sms("Hello")}};
    const json after = {{"/sms/7", Sms("Hello")}};
    const std::string key = ReadMessages(before, {"/sms/0"}, {})[0].key;
    EXPECT_TRUE(ReadMessages(after, {"/sms/7"}, {key})[0].isRead);
}

TEST(Messages, MessagesThatDifferInAnythingHaveDifferentKeys) {
    const json original = {{"/sms/0", Sms("Hello")}};
    const std::string key = ReadMessages(original, {"/sms/0"}, {})[0].key;
    for (const char* name : {"Number", "Timestamp", "Text"}) {
        json tree = original;
        Properties(tree, "/sms/0")[name] = "other";
        EXPECT_NE(ReadMessages(tree, {"/sms/0"}, {})[0].key, key) << name;
    }
    json tree = original;
    Properties(tree, "/sms/0")["Data"] = {1, 2};
    EXPECT_NE(ReadMessages(tree, {"/sms/0"}, {})[0].key, key);
}

TEST(Messages, TheOldestIsTheFirst) {
    json tree = {{"/sms/0", Sms("late")}, {"/sms/1", Sms("early")}};
    Properties(tree, "/sms/1")["Timestamp"] = "2026-11-21T15:04:05+01";
    const auto messages = ReadMessages(tree, {"/sms/0", "/sms/1"}, {});
    ASSERT_EQ(messages.size(), 2U);
    EXPECT_EQ(messages[0].text, "early");
}

TEST(Messages, WhatIsMissingOrOfAnotherTypeIsEmpty) {
    json tree = {{"/sms/0", Sms("Hello")}};
    Properties(tree, "/sms/0") = {{"State", 3}, {"PduType", 1}, {"Text", 5}, {"Number", nullptr}};
    const auto messages = ReadMessages(tree, {"/sms/0", "/sms/none"}, {});
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0].text, "");
    EXPECT_EQ(messages[0].sender, "");
    EXPECT_TRUE(ReadMessages(nullptr, {"/sms/0"}, {}).empty());
}

TEST(Messages, ATextInNoEncodingHasAKey) {
    json tree = {{"/sms/0", Sms("T\xFCrk")}};
    EXPECT_EQ(ReadMessages(tree, {"/sms/0"}, {})[0].key.size(), 64U);
}

TEST(Messages, PathsAreThoseOfTheInterfaceUpToABound) {
    EXPECT_EQ(MessagePaths({{"Messages", {"/sms/0", 5, "/sms/1"}}}),
              (std::vector<std::string>{"/sms/0", "/sms/1"}));
    EXPECT_TRUE(MessagePaths(nullptr).empty());
    EXPECT_TRUE(MessagePaths({{"Messages", "/sms/0"}}).empty());
    const json many = {{"Messages", std::vector<std::string>(100000, "/sms/0")}};
    EXPECT_EQ(MessagePaths(many).size(), 500U);
}

}  // namespace
