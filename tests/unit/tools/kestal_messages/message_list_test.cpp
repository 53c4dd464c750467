// kestal-messages shows what others have sent, whatever that is.
#include "tools/kestal_messages/message_list.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>

namespace {

const std::string kFirst(64, 'a');
const std::string kSecond(64, 'b');

Json ReportWith(const Json& said) {
    return {{{"name", "modem"}, {"said", Json::object()}}, {{"name", "messages"}, {"said", said}}};
}

Json Said(const std::string& key, const std::string& text, bool isRead) {
    return {{"key", key},
            {"sender", "+15550123"},
            {"time", "2026-11-22T15:04:05+01"},
            {"text", text},
            {"read", isRead}};
}

std::string Listed(const Json& said) {
    std::ostringstream out;
    WriteMessageList(out, MessagesIn(ReportWith(said)));
    return out.str();
}

TEST(MessageList, HasALineForEachMessageAndAStarForTheUnread) {
    EXPECT_EQ(Listed(Json::array({Said(kFirst, "Hello", true), Said(kSecond, "World", false)})),
              "  aaaaaaaa  2026-11-22T15:04:05+01  +15550123  Hello\n"
              "* bbbbbbbb  2026-11-22T15:04:05+01  +15550123  World\n");
    EXPECT_EQ(Listed(Json::array()), "");
}

TEST(MessageList, OnlyTheBeginningOfALongTextIsListed) {
    EXPECT_NE(Listed(Json::array({Said(kFirst, "one\ntwo", true)})).find("  one...\n"),
              std::string::npos);
    const std::string text = std::string(59, 'x') + "\u00e4" + "y";
    EXPECT_NE(
        Listed(Json::array({Said(kFirst, text, true)})).find("  " + std::string(59, 'x') + "...\n"),
        std::string::npos);
    EXPECT_NE(Listed(Json::array({Said(kFirst, std::string(60, 'x'), true)}))
                  .find("  " + std::string(60, 'x') + "\n"),
              std::string::npos);
}

TEST(MessageList, AMessageIsShownWhole) {
    std::ostringstream out;
    WriteMessage(out, MessagesIn(ReportWith(Json::array({Said(kFirst, "one\ntwo", true)}))).at(0));
    EXPECT_EQ(out.str(), "From +15550123, 2026-11-22T15:04:05+01\none\ntwo\n");
}

TEST(MessageList, ATerminalIsNotControlledByASender) {
    const std::string text =
        "a\x1B[2Jb\rc\x7F"
        "d\u009Be\u00e4\n";
    const auto messages = MessagesIn(ReportWith(Json::array({Said(kFirst, text, false)})));
    EXPECT_EQ(messages.at(0).text, "a?[2Jb?c?d?e\u00e4\n");
    Json said = Said(kFirst, "", false);
    said["sender"] = "\x1B]0;x\n";
    EXPECT_EQ(MessagesIn(ReportWith(Json::array({said}))).at(0).sender, "?]0;x?");
}

TEST(MessageList, AMessageIsNamedByTheBeginningOfItsKey) {
    const auto messages =
        MessagesIn(ReportWith({Said(kFirst, "Hello", true), Said(kSecond, "World", false)}));
    EXPECT_EQ(MessagesNamed(messages, messages[0].Id()).at(0).text, "Hello");
    EXPECT_THROW((void)MessagesNamed(messages, "cccccccc"), std::runtime_error);
}

TEST(MessageList, AnEmptyNameIsNotThatOfEveryMessage) {
    const auto messages = MessagesIn(ReportWith(Json::array({Said(kFirst, "Hello", false)})));
    EXPECT_THROW((void)MessagesNamed(messages, ""), std::runtime_error);
}

TEST(MessageList, UnreadNamesAllThatHaveNotBeenRead) {
    const auto messages =
        MessagesIn(ReportWith({Said(kFirst, "Hello", true), Said(kSecond, "World", false)}));
    const auto unread = MessagesNamed(messages, "unread");
    ASSERT_EQ(unread.size(), 1U);
    EXPECT_EQ(unread[0].text, "World");
    EXPECT_TRUE(MessagesNamed({}, "unread").empty());
}

TEST(MessageList, WhatIsNoMessageIsEmptyOrLeftOut) {
    EXPECT_EQ(Listed({5, nullptr, "text"}), "");
    EXPECT_EQ(Listed(Json::object()), "");
    EXPECT_EQ(Listed(Json::array({Json{{"key", 5}, {"read", "yes"}}})), "*       \n");
    EXPECT_THROW((void)MessagesIn(Json::array()), std::runtime_error);
}

}  // namespace
