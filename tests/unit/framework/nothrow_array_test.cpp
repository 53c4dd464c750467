#include "framework/nothrow_array.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

namespace {

struct Record {
    std::int32_t number;
    char text[60];
};

TEST(NothrowArray, ElementsAreCleared) {
    const auto records = NothrowArray<Record>(3);
    ASSERT_NE(records, nullptr);
    EXPECT_TRUE(std::all_of(records.get(), records.get() + 3, [](const Record& record) {
        return record.number == 0 && record.text[59] == '\0';
    }));
}

TEST(NothrowArray, SizeThatOverflowsCountsAsLackOfMemory) {
    constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max();
    for (const std::size_t count : {kMost, kMost / 2, kMost / sizeof(Record) + 1}) {
        auto records = NothrowArray<Record>(1);
        EXPECT_NO_THROW(records = NothrowArray<Record>(count)) << count;
        EXPECT_EQ(records, nullptr) << count;
    }
}

}  // namespace
