// What a tree is when there is no memory for what it is to become.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <string>

#include "to_json.h"

namespace {

/// Allocations that are granted until one fails; none fails below 0.
long gGranted = -1;
long gOutstanding = 0;

void* Allocate(std::size_t size) {
    if (gGranted == 0) {
        throw std::bad_alloc();
    }
    void* const block = std::malloc(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    --gGranted;
    ++gOutstanding;
    return block;
}

void Release(void* block) {
    if (block != nullptr) {
        --gOutstanding;
    }
    std::free(block);
}

}  // namespace

void* operator new(std::size_t size) {
    return Allocate(size);
}
void operator delete(void* block) noexcept {
    Release(block);
}
void operator delete(void* block, std::size_t /*size*/) noexcept {
    Release(block);
}

namespace {

using CTPP::CDT;

/// Lets the first allocation of @p step fail, then the second, and so on, until none does, and
/// calls @p check after each failure. Returns how many failed.
template <class Step, class Check>
long FailEach(Step step, Check check) {
    for (long granted = 0;; ++granted) {
        gGranted = granted;
        try {
            step();
            gGranted = -1;
            return granted;
        } catch (const std::bad_alloc&) {
            gGranted = -1;
            check();
        }
    }
}

std::string LongKey(int number) {
    return "a key that is too long to be stored in place, " + std::to_string(number);
}

TEST(CDTWithoutMemory, AnInsertionLeavesTheHashWithoutTheMember) {
    const long before = gOutstanding;
    {
        CDT hash(CDT::HASH_VAL);
        long failures = 0;
        for (int number = 0; number < 100; ++number) {
            const std::string key = LongKey(number);
            const std::string was = ToJSON(hash);
            failures += FailEach([&] { hash[key] = number; },
                                 [&] {
                                     EXPECT_FALSE(hash.Exists(key));
                                     EXPECT_EQ(ToJSON(hash), was);
                                 });
        }
        EXPECT_GT(failures, 100);
        EXPECT_EQ(hash.Size(), 100U);
    }
    EXPECT_EQ(gOutstanding, before);
}

TEST(CDTWithoutMemory, ACopyIsNotMadeAndNothingIsLost) {
    CDT tree;
    for (int number = 0; number < 20; ++number) {
        tree[LongKey(number)]["x"][static_cast<UINT_32>(number % 3)] = LongKey(number);
    }
    const std::string was = ToJSON(tree);
    const long before = gOutstanding;
    EXPECT_GT(FailEach([&] { EXPECT_EQ(CDT(tree).Size(), 20U); },
                       [&] { EXPECT_EQ(gOutstanding, before); }),
              100);
    EXPECT_GT(FailEach([&] { tree[LongKey(0)] = tree; },
                       [&] {
                           EXPECT_EQ(gOutstanding, before);
                           EXPECT_EQ(ToJSON(tree), was);
                       }),
              100);
}

TEST(CDTWithoutMemory, AnAssignmentLeavesTheValue) {
    CDT value;
    value["k"] = 1;
    const std::string text = LongKey(1);
    EXPECT_EQ(FailEach([&] { value = text; }, [&] { EXPECT_EQ(ToJSON(value), R"({"k":1})"); }), 1);
    EXPECT_EQ(value.GetString(), text);
}

TEST(CDTWithoutMemory, WritingFailsAndCanBeRepeated) {
    CDT tree;
    for (int number = 0; number < 1000; ++number) {
        tree[LongKey(number)][0] = LongKey(number);
    }
    const std::string whole = ToJSON(tree);
    const long before = gOutstanding;
    EXPECT_GT(
        FailEach([&] { EXPECT_EQ(ToJSON(tree), whole); }, [&] { EXPECT_EQ(gOutstanding, before); }),
        2);
    EXPECT_EQ(gOutstanding, before);
}

}  // namespace
