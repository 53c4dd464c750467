#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "to_json.h"

namespace {

using CTPP::CDT;

TEST(CDTValues, ATypeHasItsCodeAndItsName) {
    const struct {
        CDT::eValType type;
        int code;
        const char* name;
    } kTypes[] = {
        {CDT::UNDEF, 0x01, "*UNDEF*"},
        {CDT::INT_VAL, 0x02, "INTEGER"},
        {CDT::REAL_VAL, 0x04, "REAL"},
        {CDT::POINTER_VAL, 0x08, "POINTER"},
        {CDT::STRING_VAL, 0x10, "STRING"},
        {CDT::STRING_INT_VAL, 0x12, "STRING+INT"},
        {CDT::STRING_REAL_VAL, 0x14, "STRING+REAL"},
        {CDT::ARRAY_VAL, 0x20, "ARRAY"},
        {CDT::HASH_VAL, 0x40, "HASH"},
    };
    for (const auto& [type, code, name] : kTypes) {
        const CDT data(type);
        EXPECT_EQ(data.GetType(), code);
        EXPECT_STREQ(data.PrintableType(), name);
        EXPECT_STREQ(CDT::PrintableType(type), name);
        EXPECT_EQ(data.Size(), 0U);
        EXPECT_FALSE(data.Nonzero());
        EXPECT_EQ(data.GetInt(), 0);
    }
    EXPECT_EQ(CDT().GetType(), CDT::UNDEF);
}

TEST(CDTValues, IntegersReadAsTextInDecimal) {
    EXPECT_EQ(CDT(-42).GetInt(), -42);
    EXPECT_EQ(CDT(-42).GetFloat(), -42.0);
    EXPECT_EQ(CDT(-42).GetString(), "-42");
    EXPECT_EQ(CDT().GetString(), "");
    EXPECT_EQ(CDT().GetFloat(), 0.0);
}

TEST(CDTValues, LargeUnsignedIntegersAreStoredSigned) {
    const CDT data(UINT_64{UINT64_MAX});
    EXPECT_EQ(data.GetInt(), -1);
    EXPECT_EQ(data.GetUInt(), UINT64_MAX);
    EXPECT_EQ(data.GetString(), "-1");
    EXPECT_EQ(ToJSON(data), "-1");
}

TEST(CDTValues, RealsAreTruncatedAndClampedToIntegers) {
    EXPECT_EQ(CDT(3.9).GetInt(), 3);
    EXPECT_EQ(CDT(-3.9).GetInt(), -3);
    EXPECT_EQ(CDT(3.9).GetFloat(), 3.9);
    EXPECT_EQ(CDT(1e19).GetInt(), INT64_MAX);
    EXPECT_EQ(CDT(-1e19).GetInt(), INT64_MIN);
    EXPECT_EQ(CDT(9223372036854775808.0).GetInt(), INT64_MAX);
    EXPECT_EQ(CDT(-9223372036854775808.0).GetInt(), INT64_MIN);
    EXPECT_EQ(CDT(std::numeric_limits<double>::infinity()).GetInt(), INT64_MAX);
    EXPECT_EQ(CDT(std::nan("")).GetInt(), 0);
}

TEST(CDTValues, RealsReadAsTextWithTwelveDigits) {
    EXPECT_EQ(CDT(0.1).GetString(), "0.1");
    EXPECT_EQ(CDT(1e12).GetString(), "1E+12");
    EXPECT_EQ(CDT(-std::numeric_limits<double>::infinity()).GetString(), "-INF");
    EXPECT_EQ(CDT(std::nan("")).GetString(), "NAN");
}

TEST(CDTValues, PointersReadAsAddresses) {
    const CDT null(static_cast<void*>(nullptr));
    EXPECT_EQ(null.GetString(), "(nil)");
    EXPECT_EQ(null.GetInt(), 0);
    int number = 0;
    const CDT pointer(&number);
    EXPECT_EQ(pointer.GetInt(), static_cast<INT_64>(reinterpret_cast<std::intptr_t>(&number)));
    EXPECT_EQ(pointer.GetString().substr(0, 2), "0x");
    EXPECT_TRUE(pointer.Nonzero());
}

TEST(CDTValues, ContainersReadAsTypeAndAddress) {
    CDT array;
    array.PushBack(1);
    EXPECT_EQ(array.GetString().substr(0, 9), "ARRAY (0x");
    EXPECT_EQ(array.GetString().back(), ')');
    EXPECT_EQ(CDT(CDT::HASH_VAL).GetString().substr(0, 8), "HASH (0x");
    EXPECT_EQ(array.GetInt(), 0);
    EXPECT_EQ(array.GetFloat(), 0.0);
}

TEST(CDTValues, SizeCountsElementsMembersAndBytes) {
    CDT array;
    array[4] = 1;
    CDT hash;
    hash["a"] = 1;
    hash["b"];
    EXPECT_EQ(array.Size(), 5U);
    EXPECT_EQ(hash.Size(), 2U);
    EXPECT_EQ(CDT("caf\xc3\xa9").Size(), 5U);
    EXPECT_EQ(CDT(std::string("a\0b", 3)).Size(), 3U);
    EXPECT_EQ(CDT(12345).Size(), 0U);
}

TEST(CDTValues, NonzeroAsksForANumberOrASize) {
    CDT hash;
    hash["a"];
    EXPECT_TRUE(hash.Nonzero());
    EXPECT_TRUE(CDT("0").Nonzero());
    EXPECT_TRUE(CDT(-1).Nonzero());
    EXPECT_TRUE(CDT(0.5).Nonzero());
    EXPECT_FALSE(CDT(0).Nonzero());
    EXPECT_FALSE(CDT(0.0).Nonzero());
    EXPECT_FALSE(CDT("").Nonzero());
}

TEST(CDTValues, ToIntToFloatAndToStringConvertInPlace) {
    CDT data("10");
    EXPECT_EQ(data.ToInt(), 10);
    EXPECT_EQ(data.GetType(), CDT::INT_VAL);
    EXPECT_EQ(data.ToFloat(), 10.0);
    EXPECT_EQ(data.GetType(), CDT::REAL_VAL);
    EXPECT_EQ(data.ToString(), "10");
    EXPECT_EQ(data.GetType(), CDT::STRING_VAL);
    EXPECT_EQ(ToJSON(data), "\"10\"");
}

TEST(CDTValues, AppendMakesTextOfNumbersAndOfNothing) {
    CDT undefined;
    CDT integer(12);
    CDT real(1.5);
    CDT text("a");
    EXPECT_EQ(&undefined.Append("x"), &undefined);
    EXPECT_EQ(ToJSON(undefined), "\"x\"");
    EXPECT_EQ(ToJSON(integer.Append("x")), "\"12x\"");
    EXPECT_EQ(ToJSON(real.Append("x")), "\"1.5x\"");
    EXPECT_EQ(ToJSON(text.Append("").Append("b")), "\"ab\"");
}

TEST(CDTValues, SwapExchangesValues) {
    CDT left("text");
    CDT right;
    right["k"] = 1;
    left.Swap(right);
    EXPECT_EQ(ToJSON(left), "{\"k\":1}");
    EXPECT_EQ(ToJSON(right), "\"text\"");
}

}  // namespace
