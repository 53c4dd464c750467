#include "bindings/linux/modem/message_store.h"

#include <gtest/gtest.h>

#include <string>
#include <system_error>
#include <vector>

#include "tests/support/scratch.h"

namespace {

using binding::MarkMessagesRead;
using binding::MessageStorePath;
using binding::ParseMessageKeys;
using binding::ReadMessageKeys;

/// A key that ends with the digits of @p number.
std::string Key(std::size_t number) {
    const std::string digits = std::to_string(number);
    return std::string(64 - digits.size(), 'a') + digits;
}

class MessageStore : public SimulatedDevice {
  protected:
    const std::string path = directory / "read-messages";
};

TEST_F(MessageStore, WhatIsMarkedIsRead) {
    EXPECT_TRUE(ReadMessageKeys(path).empty());
    MarkMessagesRead(path, {Key(1)});
    MarkMessagesRead(path, {Key(2), Key(1)});
    EXPECT_EQ(ReadMessageKeys(path), (binding::MessageKeys{Key(1), Key(2)}));
}

TEST_F(MessageStore, TheOldestKeysGoWhenThereAreTooMany) {
    std::vector<std::string> keys;
    for (std::size_t number = 0; number < 5001; ++number) {
        keys.push_back(Key(number));
    }
    MarkMessagesRead(path, keys);
    const auto read = ReadMessageKeys(path);
    EXPECT_EQ(read.size(), 5000U);
    EXPECT_EQ(read.count(Key(0)), 0U);
    EXPECT_EQ(read.count(Key(5000)), 1U);
}

TEST_F(MessageStore, AFolderThatIsMissingIsAnError) {
    EXPECT_THROW(MarkMessagesRead(directory / "none" / "read-messages", {Key(1)}),
                 std::system_error);
}

TEST_F(MessageStore, LinesThatAreNoKeysAreIgnored) {
    const std::string contents =
        "\n\nshort\n" + Key(1) + "\n" + std::string(64, 'G') + "\n" + Key(2) + "x\n" + Key(3);
    EXPECT_EQ(ParseMessageKeys(contents), (binding::MessageKeys{Key(1), Key(3)}));
    EXPECT_TRUE(ParseMessageKeys("").empty());
}

TEST_F(MessageStore, IsInTheFirstStateDirectory) {
    environment.Set("STATE_DIRECTORY", "/var/lib/box:/var/lib/other");
    EXPECT_EQ(MessageStorePath(), "/var/lib/box/read-messages");
    environment.Set("STATE_DIRECTORY", "");
    EXPECT_EQ(MessageStorePath(), "/var/lib/kestal/read-messages");
}

}  // namespace
