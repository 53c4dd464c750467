#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

#include "to_json.h"

namespace {

using CTPP::CDT;
using CTPP::CDTAccessException;
using CTPP::CDTRangeException;
using CTPP::CDTTypeCastException;

const CDT& Const(const CDT& data) {
    return data;
}

CDT Hash() {
    CDT hash;
    hash["k"] = 1;
    hash["none"];
    return hash;
}

CDT Array() {
    CDT array;
    array[0] = 1;
    array[2] = 3;
    return array;
}

/// Values that cannot have members: texts, even empty ones, and numbers.
class CDTScalarAccess : public testing::TestWithParam<CDT::eValType> {
  protected:
    CDT data{GetParam()};
};

TEST_P(CDTScalarAccess, WritesAndQuestionsThrow) {
    const std::string before = ToJSON(data);
    EXPECT_THROW(data["k"], CDTAccessException);
    EXPECT_THROW(data[0], CDTAccessException);
    EXPECT_THROW(data.At("k"), CDTAccessException);
    EXPECT_THROW(data.At(0), CDTAccessException);
    EXPECT_THROW(data.Exists("k"), CDTAccessException);
    EXPECT_THROW(data.Exists(0), CDTAccessException);
    EXPECT_THROW(data.Erase("k"), CDTAccessException);
    EXPECT_THROW(data.Begin(), CDTAccessException);
    EXPECT_THROW(Const(data).End(), CDTAccessException);
    EXPECT_THROW(data.PushBack(1), CDTAccessException);
    EXPECT_EQ(ToJSON(data), before);
}

TEST_P(CDTScalarAccess, ConstReadsGiveUndefined) {
    EXPECT_EQ(Const(data)["k"].GetType(), CDT::UNDEF);
    EXPECT_EQ(Const(data)[0].GetType(), CDT::UNDEF);
    EXPECT_EQ(data.GetCDT("k").GetType(), CDT::UNDEF);
    EXPECT_EQ(data.GetCDT(7).GetType(), CDT::UNDEF);
}

TEST_P(CDTScalarAccess, AnythingCanBeAssigned) {
    data = Hash();
    EXPECT_EQ(data.GetType(), CDT::HASH_VAL);
    data = 1;
    EXPECT_EQ(data.GetType(), CDT::INT_VAL);
    data = CDT();
    data["k"]["l"] = 1;
    EXPECT_EQ(ToJSON(data), R"({"k":{"l":1}})");
}

INSTANTIATE_TEST_SUITE_P(Types, CDTScalarAccess,
                         testing::Values(CDT::INT_VAL, CDT::REAL_VAL, CDT::POINTER_VAL,
                                         CDT::STRING_VAL, CDT::STRING_INT_VAL,
                                         CDT::STRING_REAL_VAL));

TEST(CDTUndefinedAccess, AWriteMakesTheContainer) {
    CDT byKey;
    CDT byIndex;
    CDT byPush;
    EXPECT_EQ(byKey["k"].GetType(), CDT::UNDEF);
    EXPECT_EQ(byIndex[2].GetType(), CDT::UNDEF);
    byPush.PushBack(1);
    EXPECT_EQ(ToJSON(byKey), R"({"k":null})");
    EXPECT_EQ(ToJSON(byIndex), "[null,null,null]");
    EXPECT_EQ(ToJSON(byPush), "[1]");
}

TEST(CDTUndefinedAccess, QuestionsThrow) {
    CDT data;
    EXPECT_THROW(data.Exists("k"), CDTAccessException);
    EXPECT_THROW(data.Exists(0), CDTAccessException);
    EXPECT_THROW(data.Erase("k"), CDTAccessException);
    EXPECT_THROW(data.At("k"), CDTAccessException);
    EXPECT_THROW(data.At(0), CDTAccessException);
    EXPECT_THROW(data.Begin(), CDTAccessException);
    EXPECT_THROW(Const(data).Begin(), CDTAccessException);
    EXPECT_EQ(data.GetType(), CDT::UNDEF);
}

TEST(CDTUndefinedAccess, ChainedConstReadsAreSafe) {
    const CDT data;
    EXPECT_EQ(data["a"]["b"][3]["c"].GetType(), CDT::UNDEF);
    EXPECT_EQ(&data["a"], &data["b"]);
}

TEST(CDTHashAccess, OnlyNonConstReadsInsert) {
    CDT hash = Hash();
    EXPECT_EQ(Const(hash)["missing"].GetType(), CDT::UNDEF);
    EXPECT_EQ(hash.GetCDT("missing").GetType(), CDT::UNDEF);
    EXPECT_EQ(hash.Size(), 2U);
    EXPECT_EQ(hash["missing"].GetType(), CDT::UNDEF);
    EXPECT_EQ(hash.Size(), 3U);
    EXPECT_EQ(&hash["k"], &hash.At("k"));
    EXPECT_EQ(&Const(hash)["k"], &hash.At("k"));
}

TEST(CDTHashAccess, ExistsAndAtAskForTheKey) {
    CDT hash = Hash();
    EXPECT_TRUE(hash.Exists("k"));
    EXPECT_TRUE(hash.Exists("none"));
    EXPECT_FALSE(hash.Exists("missing"));
    EXPECT_THROW(hash.At("missing"), CDTRangeException);
}

TEST(CDTHashAccess, GetExistedCDTReportsPresenceAndNeverThrows) {
    bool exists = false;
    const CDT hash = Hash();
    EXPECT_EQ(hash.GetExistedCDT("k", exists).GetInt(), 1);
    EXPECT_TRUE(exists);
    EXPECT_EQ(hash.GetExistedCDT("missing", exists).GetType(), CDT::UNDEF);
    EXPECT_FALSE(exists);
    exists = true;
    EXPECT_EQ(CDT().GetExistedCDT("k", exists).GetType(), CDT::UNDEF);
    EXPECT_FALSE(exists);
    exists = true;
    EXPECT_EQ(CDT("text").GetExistedCDT("k", exists).GetType(), CDT::UNDEF);
    EXPECT_FALSE(exists);
}

TEST(CDTHashAccess, EraseTellsWhetherTheKeyWasThere) {
    CDT hash = Hash();
    EXPECT_TRUE(hash.Erase("k"));
    EXPECT_FALSE(hash.Erase("k"));
    EXPECT_EQ(ToJSON(hash), R"({"none":null})");
}

TEST(CDTHashAccess, IndexesAndPushesThrow) {
    CDT hash = Hash();
    EXPECT_THROW(hash[0], CDTAccessException);
    EXPECT_THROW(hash.At(0), CDTAccessException);
    EXPECT_THROW(hash.Exists(0), CDTAccessException);
    EXPECT_THROW(hash.PushBack(1), CDTAccessException);
    EXPECT_EQ(Const(hash)[0].GetType(), CDT::UNDEF);
}

TEST(CDTHashAccess, IteratorsVisitKeysInByteOrder) {
    CDT hash;
    for (const char* key : {"b", "a", "\xc3\xa9", "10", "9", ""}) {
        hash[key] = key;
    }
    std::vector<std::string> keys;
    for (CDT::ConstIterator member = Const(hash).Begin(); member != Const(hash).End(); ++member) {
        EXPECT_EQ(member->second.GetString(), member->first);
        keys.push_back(member->first);
    }
    EXPECT_EQ(keys, (std::vector<std::string>{"", "10", "9", "a", "b", "\xc3\xa9"}));
}

TEST(CDTHashAccess, IteratorsWriteValuesAndStep) {
    CDT hash = Hash();
    CDT::Iterator member = hash.Begin();
    const CDT::Iterator first = member++;
    first->second = 2;
    member->second = "set";
    EXPECT_TRUE(++member == hash.End());
    const CDT::ConstIterator converted = first;
    EXPECT_TRUE(converted == Const(hash).Begin());
    EXPECT_EQ(ToJSON(hash), R"({"k":2,"none":"set"})");
    EXPECT_TRUE(CDT(CDT::HASH_VAL).Begin() != hash.End());
}

static_assert(std::is_same_v<decltype((std::declval<CDT::ConstIterator>()->second)), const CDT&>);

TEST(CDTArrayAccess, WritesGrowTheArray) {
    CDT array = Array();
    array[5] = 6;
    EXPECT_EQ(ToJSON(array), "[1,null,3,null,null,6]");
    EXPECT_EQ(array.Size(), 6U);
    array.PushBack(7);
    EXPECT_EQ(array.Size(), 7U);
}

TEST(CDTArrayAccess, HolesExistAndTheEndDoesNot) {
    CDT array = Array();
    EXPECT_TRUE(array.Exists(1));
    EXPECT_FALSE(array.Exists(3));
    EXPECT_EQ(array.At(1).GetType(), CDT::UNDEF);
    EXPECT_THROW(array.At(3), CDTRangeException);
    EXPECT_THROW(Const(array)[3], CDTRangeException);
    EXPECT_THROW(array.GetCDT(3), CDTRangeException);
    EXPECT_EQ(array.Size(), 3U);
}

TEST(CDTArrayAccess, KeysThrowUnlessReadThroughAConst) {
    CDT array = Array();
    EXPECT_THROW(array["k"], CDTAccessException);
    EXPECT_THROW(array.At("k"), CDTAccessException);
    EXPECT_THROW(array.Exists("k"), CDTAccessException);
    EXPECT_THROW(array.Erase("k"), CDTAccessException);
    EXPECT_THROW(array.Begin(), CDTAccessException);
    EXPECT_THROW(array.End(), CDTAccessException);
    EXPECT_EQ(Const(array)["k"].GetType(), CDT::UNDEF);
}

TEST(CDTArrayAccess, AWrappedIndexIsOutOfRange) {
    CDT array = Array();
    EXPECT_THROW(array[static_cast<UINT_32>(-1)], CDTRangeException);
    EXPECT_THROW(array[INT32_MAX], CDTRangeException);
    EXPECT_EQ(ToJSON(array), "[1,null,3]");
    EXPECT_THROW(CDT()[static_cast<UINT_32>(-1)], CDTRangeException);
}

TEST(CDTArrayAccess, ElementsStayInPlaceWhileTheArrayGrows) {
    CDT array;
    array[0] = "first";
    array[9] = array[0];
    CDT& first = array[0];
    for (int i = 0; i < 1000; ++i) {
        array.PushBack(i);
    }
    first = "changed";
    EXPECT_EQ(array[0].GetString(), "changed");
    EXPECT_EQ(array[9].GetString(), "first");
}

TEST(CDTAppend, ContainersAndPointersCannotBecomeText) {
    CDT hash = Hash();
    CDT array = Array();
    CDT pointer(static_cast<void*>(nullptr));
    EXPECT_THROW(hash.Append("x"), CDTTypeCastException);
    EXPECT_THROW(array.Append("x"), CDTTypeCastException);
    EXPECT_THROW(pointer.Append("x"), CDTTypeCastException);
}

TEST(CTPPExceptions, TellWhatHappenedAndShareABase) {
    EXPECT_STREQ(CTPP::CTPPException().what(), "CTPP exception");
    EXPECT_STREQ(CDTAccessException().what(), "operator []");
    EXPECT_STREQ(CDTRangeException().what(), "pos > size");
    EXPECT_STREQ(CDTTypeCastException("Append").what(), "Append");
    EXPECT_THROW(throw CDTAccessException(), CTPP::CTPPException);
    EXPECT_THROW(throw CDTRangeException(), CTPP::CTPPException);
    EXPECT_THROW(throw CDTTypeCastException("Append"), CTPP::CTPPException);
    EXPECT_THROW(throw CTPP::CTPPException(), std::exception);
}

}  // namespace
