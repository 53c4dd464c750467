// The state of a tree after an operation has failed for lack of memory.
#include <gtest/gtest.h>

#include <new>
#include <string>

#include "tests/faults/failing_memory.h"
#include "to_json.h"

namespace {

using CTPP::CDT;

/// Repeats @p step: its first allocation fails, then its second, and so on, until it has no more
/// allocations. Calls @p check after each failure. Returns the number of failures.
template <class Step, class Check>
long FailEach(Step step, Check check) {
    for (long failing = 1;; ++failing) {
        bool failed = false;
        failing_memory::FailAt(failing, false);
        try {
            step();
        } catch (const std::bad_alloc&) {
            failed = true;
        }
        failing_memory::Stop();
        if (!failed) {
            return failing - 1;
        }
        check();
    }
}

std::string LongKey(int number) {
    return "a key that is too long to be stored in place, " + std::to_string(number);
}

TEST(CDTWithoutMemory, AnInsertionLeavesTheHashWithoutTheMember) {
    const long before = failing_memory::Outstanding();
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
    EXPECT_EQ(failing_memory::Outstanding(), before);
}

TEST(CDTWithoutMemory, ACopyIsNotMadeAndNothingIsLost) {
    CDT tree;
    for (int number = 0; number < 20; ++number) {
        tree[LongKey(number)]["x"][static_cast<UINT_32>(number % 3)] = LongKey(number);
    }
    const std::string was = ToJSON(tree);
    const long before = failing_memory::Outstanding();
    EXPECT_GT(FailEach([&] { EXPECT_EQ(CDT(tree).Size(), 20U); },
                       [&] { EXPECT_EQ(failing_memory::Outstanding(), before); }),
              100);
    EXPECT_GT(FailEach([&] { tree[LongKey(0)] = tree; },
                       [&] {
                           EXPECT_EQ(failing_memory::Outstanding(), before);
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
    const long before = failing_memory::Outstanding();
    EXPECT_GT(FailEach([&] { EXPECT_EQ(ToJSON(tree), whole); },
                       [&] { EXPECT_EQ(failing_memory::Outstanding(), before); }),
              2);
    EXPECT_EQ(failing_memory::Outstanding(), before);
}

}  // namespace
