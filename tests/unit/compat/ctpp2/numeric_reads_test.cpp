#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <ostream>
#include <string>

#include "to_json.h"

namespace {

using CTPP::CDT;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Read {
    std::string text;
    INT_64 integer;
    double real;
    CDT::eValType typeAfterwards;
    std::string jsonAfterwards;
};

void PrintTo(const Read& read, std::ostream* out) {
    *out << read.text;
}

class CDTNumericRead : public testing::TestWithParam<Read> {};

TEST_P(CDTNumericRead, GivesTheNumberAndRetypesTheText) {
    const auto& [text, integer, real, type, json] = GetParam();
    const CDT data(text);
    EXPECT_EQ(data.GetInt(), integer);
    EXPECT_EQ(data.GetType(), type);
    EXPECT_EQ(data.GetUInt(), static_cast<UINT_64>(integer));
    EXPECT_EQ(data.GetFloat(), real);
    EXPECT_EQ(data.GetType(), type);
    EXPECT_EQ(data.GetString(), text);
    EXPECT_EQ(data.Size(), text.size());
    EXPECT_EQ(ToJSON(data), json);
}

TEST_P(CDTNumericRead, IsTheSameForReals) {
    const CDT data(GetParam().text);
    EXPECT_EQ(data.GetFloat(), GetParam().real);
    EXPECT_EQ(data.GetType(), GetParam().typeAfterwards);
    EXPECT_EQ(data.GetInt(), GetParam().integer);
}

constexpr auto kInt = CDT::STRING_INT_VAL;
constexpr auto kReal = CDT::STRING_REAL_VAL;

INSTANTIATE_TEST_SUITE_P(
    Integers, CDTNumericRead,
    testing::Values(
        Read{"5", 5, 5, kInt, "5"}, Read{"-5", -5, -5, kInt, "-5"},
        Read{"+5", 5, 5, kInt, "\"+5\""}, Read{"007", 7, 7, kInt, "\"007\""},
        Read{"0", 0, 0, kInt, "0"}, Read{"-0", 0, 0, kInt, "-0"}, Read{"", 0, 0, kInt, "\"\""},
        Read{"-", 0, 0, kInt, "\"-\""}, Read{"+", 0, 0, kInt, "\"+\""},
        Read{"9223372036854775807", INT64_MAX, 0x1p63, kInt, "9223372036854775807"},
        Read{"9223372036854775808", INT64_MAX, 0x1p63, kInt, "9223372036854775808"},
        Read{"+99999999999999999999", INT64_MAX, 0x1p63, kInt, "\"+99999999999999999999\""},
        Read{"-9223372036854775809", INT64_MIN, -0x1p63, kInt, "-9223372036854775809"}));

INSTANTIATE_TEST_SUITE_P(
    Reals, CDTNumericRead,
    testing::Values(Read{"1.5", 1, 1.5, kReal, "1.5"}, Read{"1.9", 1, 1.9, kReal, "1.9"},
                    Read{"-1.9", -1, -1.9, kReal, "-1.9"}, Read{"+1.5", 1, 1.5, kReal, "\"+1.5\""},
                    Read{".5", 0, 0.5, kReal, "\".5\""}, Read{"-.5", 0, -0.5, kReal, "\"-.5\""},
                    Read{"1.", 0, 0, kReal, "\"1.\""}, Read{"1e3", 1000, 1000, kReal, "1e3"},
                    Read{"1E3", 1000, 1000, kReal, "1E3"}, Read{"1e+2", 100, 100, kReal, "1e+2"},
                    Read{"1.e2", 100, 100, kReal, "\"1.e2\""},
                    Read{"15e-1", 1, 1.5, kReal, "15e-1"},
                    Read{"1e19", INT64_MAX, 1e19, kReal, "1e19"},
                    Read{"1e400", INT64_MAX, kInfinity, kReal, "1e400"},
                    Read{"-1e400", INT64_MIN, -kInfinity, kReal, "-1e400"},
                    Read{"1e-400", 0, 0, kReal, "1e-400"},
                    Read{"0." + std::string(400, '0') + "1", 0, 0, kReal,
                         "0." + std::string(400, '0') + "1"},
                    Read{std::string(400, '9') + ".5", INT64_MAX, kInfinity, kReal,
                         std::string(400, '9') + ".5"}));

INSTANTIATE_TEST_SUITE_P(
    OtherTexts, CDTNumericRead,
    testing::Values(Read{"0x10", 0, 0, kReal, "\"0x10\""}, Read{" 7", 0, 0, kReal, "\" 7\""},
                    Read{"7 ", 0, 0, kReal, "\"7 \""}, Read{"7\n", 0, 0, kReal, R"("7\n")"},
                    Read{"\t7", 0, 0, kReal, R"("\t7")"}, Read{"abc", 0, 0, kReal, "\"abc\""},
                    Read{"5abc", 0, 0, kReal, "\"5abc\""}, Read{"5 6", 0, 0, kReal, "\"5 6\""},
                    Read{"1,5", 0, 0, kReal, "\"1,5\""}, Read{"+-5", 0, 0, kReal, "\"+-5\""},
                    Read{"true", 0, 0, kReal, "\"true\""}, Read{"null", 0, 0, kReal, "\"null\""},
                    Read{"nan", 0, 0, kReal, "\"nan\""}, Read{"inf", 0, 0, kReal, "\"inf\""},
                    Read{"1e", 0, 0, kReal, "\"1e\""}, Read{"1e+", 0, 0, kReal, "\"1e+\""},
                    Read{"e5", 0, 0, kReal, "\"e5\""}, Read{".", 0, 0, kReal, "\".\""},
                    Read{"1.5x", 0, 0, kReal, "\"1.5x\""},
                    Read{"1e5x", 0, 0, CDT::STRING_VAL, "\"1e5x\""},
                    Read{std::string("5\0", 2), 0, 0, kReal, R"("5\u0000")"},
                    Read{R"(x","evil":"<y)", 0, 0, kReal, R"("x\",\"evil\":\"\u003cy")"}));

TEST(CDTRetyping, IsPerObjectAndInheritedByLaterCopies) {
    const CDT read("10");
    CDT copies;
    copies["before"] = read;
    EXPECT_EQ(read.GetInt(), 10);
    copies["later"] = read;
    EXPECT_EQ(ToJSON(read), "10");
    EXPECT_EQ(ToJSON(copies), R"({"before":"10","later":10})");
}

TEST(CDTRetyping, OtherReadsDoNotCauseIt) {
    CDT tree;
    tree["a"] = "10";
    const CDT& data = tree["a"];
    EXPECT_EQ(data.GetString(), "10");
    EXPECT_EQ(data.Size(), 2U);
    EXPECT_TRUE(data.Nonzero());
    EXPECT_TRUE(tree.Exists("a"));
    EXPECT_EQ(data.GetType(), CDT::STRING_VAL);
    EXPECT_EQ(ToJSON(tree), R"({"a":"10"})");
}

TEST(CDTRetyping, AssignmentAndToStringClearIt) {
    CDT data("10");
    EXPECT_EQ(data.GetInt(), 10);
    data = "10";
    EXPECT_EQ(ToJSON(data), "\"10\"");
    EXPECT_EQ(data.GetFloat(), 10.0);
    EXPECT_EQ(data.ToString(), "10");
    EXPECT_EQ(ToJSON(data), "\"10\"");
}

TEST(CDTRetyping, AppendKeepsTheTypeAndTheNumberRead) {
    CDT data("5");
    EXPECT_EQ(data.GetInt(), 5);
    data.Append("6");
    EXPECT_EQ(data.GetString(), "56");
    EXPECT_EQ(data.GetInt(), 5);
    EXPECT_EQ(data.GetType(), CDT::STRING_INT_VAL);
}

}  // namespace
