#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

#include "to_json.h"

namespace {

using CTPP::CDT;

std::string EscapedByte(unsigned char byte) {
    switch (byte) {
        case '\b':
            return R"(\b)";
        case '\t':
            return R"(\t)";
        case '\n':
            return R"(\n)";
        case '\f':
            return R"(\f)";
        case '\r':
            return R"(\r)";
        case '"':
            return R"(\")";
        case '/':
            return R"(\/)";
        case '\\':
            return R"(\\)";
        case '<':
            return R"(\u003c)";
        case '>':
            return R"(\u003e)";
        default:
            break;
    }
    if (byte < 0x20) {
        char escape[8];
        std::snprintf(escape, sizeof(escape), "\\u%04x", unsigned{byte});
        return escape;
    }
    return {static_cast<char>(byte)};
}

class CDTJSONByte : public testing::TestWithParam<int> {};

TEST_P(CDTJSONByte, IsEscapedAlikeInValuesAndKeys) {
    const auto byte = static_cast<unsigned char>(GetParam());
    const std::string text = std::string("a") + static_cast<char>(byte) + "z";
    const std::string quoted = "\"a" + EscapedByte(byte) + "z\"";
    CDT value(text);
    CDT hash;
    hash[text] = 1;
    EXPECT_EQ(ToJSON(value), quoted);
    EXPECT_EQ(ToJSON(hash), "{" + quoted + ":1}");
}

TEST_P(CDTJSONByte, IsEscapedWhereverItStandsInAText) {
    const auto byte = static_cast<unsigned char>(GetParam());
    const std::string other = "\xff\x80 plain, {[~^|?.`@\x7f]} \xc3\xa9 1234";
    for (std::size_t place = 0; place <= other.size(); ++place) {
        std::string text = other;
        text.insert(place, 1, static_cast<char>(byte));
        const std::string json =
            "\"" + other.substr(0, place) + EscapedByte(byte) + other.substr(place) + "\"";
        EXPECT_EQ(ToJSON(CDT(text)), json);
    }
    // Texts shorter than, as long as and longer than the block that is scanned at once.
    for (std::size_t size = 0; size < 20; ++size) {
        std::string text = other.substr(0, size);
        for (std::size_t place = 0; place <= size; ++place) {
            std::string escaped = other.substr(0, size);
            EXPECT_EQ(
                ToJSON(CDT(text.substr(0, place) + static_cast<char>(byte) + text.substr(place))),
                "\"" + escaped.insert(place, EscapedByte(byte)) + "\"");
        }
    }
    const std::string repeated(17, static_cast<char>(byte));
    std::string json = "\"";
    for (std::size_t i = 0; i < repeated.size(); ++i) {
        json += EscapedByte(byte);
    }
    EXPECT_EQ(ToJSON(CDT(repeated)), json + "\"");
}

INSTANTIATE_TEST_SUITE_P(All, CDTJSONByte, testing::Range(0, 256));

TEST(CDTJSON, IsAppended) {
    CDT data;
    data["a"] = 1;
    std::string json = "before ";
    CTPP::CDT2JSON(data, json);
    EXPECT_EQ(json, R"(before {"a":1})");
}

TEST(CDTJSON, TextsOfAnyLengthAreWritten) {
    // Lengths around the size of a word and around the sizes of the buffers in which text is
    // collected.
    std::vector<std::size_t> lengths = {0, 1, 7, 8, 9, 15, 16, 17, 511, 512, 513, 1023, 1024, 1025};
    for (std::size_t length = 2030; length < 2070; ++length) {
        lengths.insert(lengths.end(), {length, 2 * length, 4 * length});
    }
    for (const std::size_t length : lengths) {
        const std::string plain(length, 'p');
        CDT data;
        data[plain][0] = plain + "<";
        data[plain][1] = 7;
        const std::string key = "{\"" + plain + "\":";
        EXPECT_EQ(ToJSON(data), key + "[\"" + plain + "\\u003c\",7]}");
    }
    const CDT escapes(std::string(5000, '>'));
    std::string json;
    for (int i = 0; i < 5000; ++i) {
        json += "\\u003e";
    }
    EXPECT_EQ(ToJSON(escapes), "\"" + json + "\"");
    const CDT digits(std::string(9000, '1'));
    EXPECT_EQ(digits.GetInt(), INT64_MAX);
    EXPECT_EQ(ToJSON(digits), std::string(9000, '1'));
}

TEST(CDTJSON, TheRootMayHaveAnyType) {
    EXPECT_EQ(ToJSON(CDT()), "null");
    EXPECT_EQ(ToJSON(CDT(7)), "7");
    EXPECT_EQ(ToJSON(CDT("t")), "\"t\"");
    EXPECT_EQ(ToJSON(CDT(CDT::ARRAY_VAL)), "[]");
    EXPECT_EQ(ToJSON(CDT(CDT::HASH_VAL)), "{}");
}

TEST(CDTJSON, HasNoWhitespaceAndNests) {
    CDT data;
    data["a"][0]["b"][1] = CDT(CDT::HASH_VAL);
    data["a"][1] = "t";
    data["c"] = CDT(CDT::ARRAY_VAL);
    EXPECT_EQ(ToJSON(data), R"({"a":[{"b":[null,{}]},"t"],"c":[]})");
}

TEST(CDTJSON, KeysComeInByteOrder) {
    CDT data;
    for (const char* key : {"\xc3\xa9", "\x7f", "~", "aa", "a.b", "a-b", "a b", "a", "_", "Z", "A",
                            "9", "10", "1", "-", "\x01", ""}) {
        data[key] = 1;
    }
    EXPECT_EQ(ToJSON(data),
              "{\"\":1,\"\\u0001\":1,\"-\":1,\"1\":1,\"10\":1,\"9\":1,\"A\":1,\"Z\":1,\"_\":1,"
              "\"a\":1,\"a b\":1,\"a-b\":1,\"a.b\":1,\"aa\":1,\"~\":1,\"\x7f\":1,\"\xc3\xa9\":1}");
}

TEST(CDTJSON, TextThatLooksLikeANumberStaysText) {
    EXPECT_EQ(ToJSON(CDT("10")), "\"10\"");
    EXPECT_EQ(ToJSON(CDT("")), "\"\"");
}

TEST(CDTJSON, RealsHaveTwelveSignificantDigits) {
    EXPECT_EQ(ToJSON(CDT(1.0)), "1");
    EXPECT_EQ(ToJSON(CDT(0.1)), "0.1");
    EXPECT_EQ(ToJSON(CDT(1e5)), "100000");
    EXPECT_EQ(ToJSON(CDT(1e12)), "1E+12");
    EXPECT_EQ(ToJSON(CDT(1234567890123.0)), "1.23456789012E+12");
    EXPECT_EQ(ToJSON(CDT(1e-5)), "1E-05");
    EXPECT_EQ(ToJSON(CDT(1.0 / 3)), "0.333333333333");
    EXPECT_EQ(ToJSON(CDT(-0.0)), "-0");
    EXPECT_EQ(ToJSON(CDT(0.1F)), "0.10000000149");
    EXPECT_EQ(ToJSON(CDT(-1.23456789012e-300)), "-1.23456789012E-300");
    EXPECT_EQ(ToJSON(CDT(std::numeric_limits<double>::max())), "1.79769313486E+308");
    EXPECT_EQ(ToJSON(CDT(std::numeric_limits<double>::denorm_min())), "4.94065645841E-324");
}

TEST(CDTJSON, RealsDoNotDependOnTheLocale) {
    ASSERT_EQ(setenv("LOCPATH", KESTAL_COMMA_LOCALES, 1), 0);
    ASSERT_NE(std::setlocale(LC_NUMERIC, "de_DE"), nullptr);
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    const CDT text("1.5");
    const std::string json = ToJSON(CDT(1.5));
    const W_FLOAT real = text.GetFloat();
    std::setlocale(LC_NUMERIC, "C");
    EXPECT_EQ(json, "1.5");
    EXPECT_EQ(real, 1.5);
}

TEST(CDTJSON, ValuesThatJSONDoesNotHaveAreNull) {
    int number = 0;
    CDT data;
    data.PushBack(std::nan(""));
    data.PushBack(-std::nan(""));
    data.PushBack(std::numeric_limits<double>::infinity());
    data.PushBack(-std::numeric_limits<double>::infinity());
    data.PushBack(&number);
    data.PushBack(CDT(CDT::POINTER_VAL));
    EXPECT_EQ(ToJSON(data), "[null,null,null,null,null,null]");
}

TEST(CDTJSON, TextMadeByTypeCodeIsEmptyText) {
    EXPECT_EQ(ToJSON(CDT(CDT::STRING_VAL)), "\"\"");
    EXPECT_EQ(ToJSON(CDT(CDT::STRING_INT_VAL)), "\"\"");
    EXPECT_EQ(ToJSON(CDT(CDT::STRING_REAL_VAL)), "\"\"");
}

TEST(CDTJSON, UnfinishedAndBrokenUTF8PassesThrough) {
    EXPECT_EQ(ToJSON(CDT("caf\xe9")), "\"caf\xe9\"");
    EXPECT_EQ(ToJSON(CDT("\xc3\"")), "\"\xc3\\\"\"");
    EXPECT_EQ(ToJSON(CDT("\xe2\x80<")), "\"\xe2\x80\\u003c\"");
    EXPECT_EQ(ToJSON(CDT("\xe2\x80\xa8")), "\"\xe2\x80\xa8\"");
}

TEST(CDTJSON, DepthCostsNoStack) {
    constexpr std::size_t kDepth = 200000;
    CDT hashes;
    CDT arrays;
    CDT* hash = &hashes;
    CDT* array = &arrays;
    for (std::size_t depth = 0; depth < kDepth; ++depth) {
        hash = &(*hash)["k"];
        array = &(*array)[0];
    }
    const CDT copy = hashes;
    std::string expected;
    for (std::size_t i = 0; i < kDepth; ++i) {
        expected += R"({"k":)";
    }
    expected += "null" + std::string(kDepth, '}');
    EXPECT_TRUE(ToJSON(copy) == expected);
    EXPECT_TRUE(ToJSON(arrays) == std::string(kDepth, '[') + "null" + std::string(kDepth, ']'));
    hashes = 1;
    arrays = CDT();
}

}  // namespace
