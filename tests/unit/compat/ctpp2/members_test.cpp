// Members of a hash, compared with std::map: their order, and that their addresses do not change.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "to_json.h"

namespace {

using CTPP::CDT;

/// The numbers below @p count in a random order that is the same in every run.
std::vector<int> Shuffled(int count) {
    std::vector<int> numbers(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        numbers[static_cast<std::size_t>(i)] = i;
    }
    std::mt19937 random(1);  // NOLINT(cert-msc51-cpp): the same in every run
    std::shuffle(numbers.begin(), numbers.end(), random);
    return numbers;
}

/// Makes keys of many lengths, many of which begin in the same way.
std::string Key(int number) {
    const std::array<std::string, 5> parts = {"Bar", "", "Sim2", "\xc3\xa9", "ofAVeryLongName"};
    std::string key = "status";
    for (std::size_t rest = static_cast<std::size_t>(number); rest > 0; rest /= parts.size()) {
        key += parts[rest % parts.size()];
    }
    return key + std::string(static_cast<std::size_t>(number % 3), '\0');
}

void ExpectSame(const CDT& hash, const std::map<std::string, int>& expected) {
    ASSERT_EQ(hash.Size(), expected.size());
    CDT::ConstIterator member = hash.Begin();
    for (const auto& [key, value] : expected) {
        EXPECT_EQ(member->first, key);
        EXPECT_EQ(member->second.GetInt(), value);
        EXPECT_EQ(&hash[key], &member->second);
        ++member;
    }
    EXPECT_TRUE(member == hash.End());
}

class CDTMemberCount : public testing::TestWithParam<int> {};

TEST_P(CDTMemberCount, MembersInRandomOrderAreSorted) {
    CDT hash(CDT::HASH_VAL);
    std::map<std::string, int> expected;
    for (const int number : Shuffled(GetParam())) {
        EXPECT_EQ(hash.Exists(Key(number)), expected.contains(Key(number)));
        hash[Key(number)] = number;
        expected[Key(number)] = number;
    }
    ExpectSame(hash, expected);
}

TEST_P(CDTMemberCount, MembersStayInPlaceWhileOthersComeAndGo) {
    CDT hash(CDT::HASH_VAL);
    std::map<std::string, int> expected;
    std::map<std::string, CDT*> places;
    for (const int number : Shuffled(GetParam())) {
        CDT& member = hash[std::to_string(number)];
        member = number;
        places[std::to_string(number)] = &member;
        expected[std::to_string(number)] = number;
        if (number % 3 == 0) {
            const std::string gone = std::to_string(number / 2);
            EXPECT_EQ(hash.Erase(gone), expected.erase(gone) == 1);
            places.erase(gone);
        }
    }
    for (const auto& [key, place] : places) {
        EXPECT_EQ(&hash.At(key), place);
    }
    ExpectSame(hash, expected);
}

TEST_P(CDTMemberCount, CopiesAreSortedAndErasedMembersAreGone) {
    CDT hash(CDT::HASH_VAL);
    for (const int number : Shuffled(GetParam())) {
        hash[std::to_string(number)] = number;
    }
    CDT copy = hash;
    EXPECT_EQ(ToJSON(copy), ToJSON(hash));
    for (const int number : Shuffled(GetParam())) {
        EXPECT_TRUE(copy.Erase(std::to_string(number)));
        EXPECT_FALSE(copy.Exists(std::to_string(number)));
    }
    EXPECT_EQ(copy.Size(), 0U);
    EXPECT_TRUE(copy.Begin() == copy.End());
    copy["again"] = 1;
    EXPECT_EQ(ToJSON(copy), R"({"again":1})");
    EXPECT_EQ(hash.Size(), static_cast<UINT_32>(GetParam()));
}

// Numbers of members that lie within the first block, fill it, go beyond it, or need many blocks.
INSTANTIATE_TEST_SUITE_P(Of, CDTMemberCount, testing::Values(0, 1, 2, 5, 6, 7, 12, 13, 100, 10000));

extern const char kOfUnknownSize[];
constexpr char kConstant[] = "constant";

TEST(CDTMembers, KeysMayBeLiteralsArraysPointersAndTexts) {
    CDT hash;
    char array[16] = "array";
    const char* pointer = "pointer";
    const std::string text = "text";
    hash["literal"] = 1;
    hash[array] = 2;
    hash[pointer] = 3;
    hash[text] = 4;
    hash[std::string("moved")] = 5;
    hash[""] = 6;
    EXPECT_EQ(ToJSON(hash), R"({"":6,"array":2,"literal":1,"moved":5,"pointer":3,"text":4})");
    EXPECT_EQ(&hash["array"], &hash[std::string("array")]);
    EXPECT_EQ(&hash["literal\0ignored"], &hash.At("literal"));
    hash[std::string("literal\0counts", 14)] = 7;
    hash[kOfUnknownSize] = 8;
    hash[{pointer, 3}] = 9;
    hash[kConstant] = 10;
    EXPECT_EQ(hash.At("size").GetInt(), 8);
    EXPECT_EQ(hash.At("poi").GetInt(), 9);
    EXPECT_EQ(hash.At("constant").GetInt(), 10);
    EXPECT_EQ(hash.Size(), 10U);
}

/// Calls @p insert twice, the second time with the same keys in the other form (literal or text),
/// and expects one member for each key, which the second call changes in place.
template <class Insert>
void ExpectOneMemberEach(Insert insert) {
    const std::vector<std::string> sorted = {"",
                                             "s",
                                             "sixteen letters",
                                             "sixteen letters.",
                                             "sixteen letters. And more",
                                             "sixteen letters. And more than that",
                                             "sixteen letters/",
                                             "\x7f",
                                             "\xc3\xa9"};
    CDT hash;
    std::vector<CDT*> places;
    for (const bool again : {false, true}) {
        insert(hash, again);
        ASSERT_EQ(hash.Size(), sorted.size());
        CDT::Iterator member = hash.Begin();
        for (std::size_t i = 0; i < sorted.size(); ++i, ++member) {
            EXPECT_EQ(member->first, sorted[i]);
            EXPECT_EQ(member->second.GetInt(), again ? 2 : 1);
            places.push_back(&member->second);
            EXPECT_EQ(places[i], &member->second);
            EXPECT_EQ(places[i], &hash.At(sorted[i]));
        }
        EXPECT_TRUE(member == hash.End());
    }
}

void InsertLiterals(CDT& hash, int value) {
    hash["\xc3\xa9"] = value;
    hash["sixteen letters. And more than that"] = value;
    hash["sixteen letters"] = value;
    hash["s"] = value;
    hash["sixteen letters/"] = value;
    hash["sixteen letters. And more"] = value;
    hash["\x7f"] = value;
    hash["sixteen letters."] = value;
    hash[""] = value;
}

void InsertTexts(CDT& hash, int value) {
    for (const char* key :
         {"s", "", "sixteen letters.", "sixteen letters. And more than that", "\xc3\xa9",
          "sixteen letters", "\x7f", "sixteen letters/", "sixteen letters. And more"}) {
        hash[key] = value;
    }
}

TEST(CDTMembers, LiteralsAndTextsAreTheSameKeysInTheSameOrder) {
    ExpectOneMemberEach(
        [](CDT& hash, bool again) { again ? InsertTexts(hash, 2) : InsertLiterals(hash, 1); });
    ExpectOneMemberEach(
        [](CDT& hash, bool again) { again ? InsertLiterals(hash, 2) : InsertTexts(hash, 1); });
}

const char kOfUnknownSize[] = "size";

TEST(CDTMembers, AKeyTakenFromAnIteratorIsACopy) {
    std::string text;
    bool same = false;
    {
        CDT hash;
        hash[std::string("a text that is too long to be stored in place")] = 1;
        auto key = hash.Begin()->first;
        same = key == hash.Begin()->first;
        auto moved = std::move(key);
        key = hash.Begin()->first;
        hash.Erase(key);
        text = moved;
        EXPECT_EQ(key, moved);
    }
    EXPECT_TRUE(same);
    EXPECT_EQ(text, "a text that is too long to be stored in place");
}

TEST(CDTMembers, KeysOutliveTheTextTheyWereMadeOfAndTheTreeTheyWereCopiedFrom) {
    CDT copy;
    {
        CDT hash;
        std::string text = "a text that is too long to be stored in place";
        hash[text] = 1;
        hash["a literal that is too long to be stored in place"] = 2;
        text.assign(text.size(), 'x');
        copy = hash;
    }
    EXPECT_EQ(ToJSON(copy), R"({"a literal that is too long to be stored in place":2,)"
                            R"("a text that is too long to be stored in place":1})");
}

TEST(CDTMembers, KeysWithNulsAreInOrder) {
    CDT hash;
    hash["a"] = 1;
    for (const std::size_t length : {4U, 3U, 2U, 20U}) {
        hash["a" + std::string(length - 1, '\0')] = 2;
    }
    hash["a\x01"] = 3;
    std::vector<std::size_t> lengths;
    for (CDT::Iterator member = hash.Begin(); !(member == hash.End()); ++member) {
        lengths.push_back(std::string(member->first).size());
    }
    EXPECT_EQ(lengths, (std::vector<std::size_t>{1, 2, 3, 4, 20, 2}));
    EXPECT_EQ(hash["a"].GetInt(), 1);
}

TEST(CDTMembers, AMemberCanBeErasedByItsOwnKey) {
    CDT hash;
    hash["first"] = 1;
    hash["a second, with a key that is too long to be stored in place"] = 2;
    EXPECT_TRUE(hash.Erase(hash.Begin()->first));
    EXPECT_EQ(ToJSON(hash), R"({"first":1})");
}

TEST(CDTMembers, AnErasedSubtreeCanComeBackEmpty) {
    CDT hash;
    hash["deep"]["er"][3] = "x";
    EXPECT_TRUE(hash.Erase("deep"));
    EXPECT_EQ(hash["deep"].GetType(), CDT::UNDEF);
}

}  // namespace
