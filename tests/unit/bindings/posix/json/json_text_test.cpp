// Changing one value of a JSON text leaves every other byte as it is.
#include "bindings/posix/json/json_text.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

namespace {

using binding::FindValue;
using binding::WithMember;

std::string WithStatus(const std::string& text, const std::string& value) {
    return WithMember(text, {"sys"}, "status", value);
}

TEST(JsonText, ReplacesTheValueOnly) {
    EXPECT_EQ(
        WithStatus("{ \"a\" : 1.10, \"sys\" : {\"status\" :\t12 , \"b\": \"\\u00e9\"}}\n", "0"),
        "{ \"a\" : 1.10, \"sys\" : {\"status\" :\t0 , \"b\": \"\\u00e9\"}}\n");
    EXPECT_EQ(WithStatus("{\"sys\":{\"status\":12}}", "2"), "{\"sys\":{\"status\":2}}");
    EXPECT_EQ(WithStatus("{\"sys\":{\"status\":12\n}}", "2"), "{\"sys\":{\"status\":2\n}}");
}

TEST(JsonText, ReplacesValuesOfEveryKind) {
    for (const std::string old :
         {"null", "true", "-1.5e3", "\"a \\\" b\"", "[1, {}]", "{\"status\": [{}]}", "{}", "[]"}) {
        EXPECT_EQ(WithStatus("{\"sys\": {\"a\": 1, \"status\": " + old + ", \"b\": 2}}", "7"),
                  "{\"sys\": {\"a\": 1, \"status\": 7, \"b\": 2}}");
    }
}

TEST(JsonText, ReplacesTheMemberOfTheRightObject) {
    EXPECT_EQ(
        WithStatus("{\"x\": {\"status\": 1}, \"sys\": {\"y\": {\"status\": 1}, \"status\": 1}}",
                   "2"),
        "{\"x\": {\"status\": 1}, \"sys\": {\"y\": {\"status\": 1}, \"status\": 2}}");
}

TEST(JsonText, AddsAMissingMemberInFront) {
    EXPECT_EQ(WithStatus("{\n    \"sys\": {\n        \"a\": 1\n    }\n}\n", "2"),
              "{\n    \"sys\": {\n        \"status\": 2,\n        \"a\": 1\n    }\n}\n");
    EXPECT_EQ(WithStatus("{\"sys\": {}}", "2"), "{\"sys\": {\"status\": 2}}");
    EXPECT_EQ(WithStatus("{\"sys\": { }}", "2"), "{\"sys\": { \"status\": 2 }}");
}

TEST(JsonText, AddsAMissingObject) {
    EXPECT_EQ(WithStatus("{}", "2"), "{\"sys\": {\"status\": 2}}");
    EXPECT_EQ(WithStatus("\n{\n  \"webui\": {}\n}", "2"),
              "\n{\n  \"sys\": {\"status\": 2},\n  \"webui\": {}\n}");
}

TEST(JsonText, KnowsTheLineOfAName) {
    const std::string text = "{\n\"a\":\n\n[1,\n2\n,\n[\n3\n]]}";
    EXPECT_EQ(FindValue(text, {"a"})->line, 2U);
    EXPECT_EQ(FindValue(text, {"a", std::size_t{0}})->line, 4U);
    EXPECT_EQ(FindValue(text, {"a", std::size_t{1}})->line, 5U);
    EXPECT_EQ(FindValue(text, {"a", std::size_t{2}})->line, 7U);
    EXPECT_EQ(FindValue(text, {"a", std::size_t{2}, std::size_t{0}})->line, 8U);
    EXPECT_FALSE(FindValue(text, {"b"}));
    EXPECT_FALSE(FindValue(text, {"a", std::size_t{3}}));
}

TEST(JsonText, DoesNotEndAtANul) {
    using std::string_literals::operator""s;
    for (const std::string& text : {"{}\n\0"s, "{}\n\0{\"sys\": ["s, "{}\n\0\0\0\0"s}) {
        try {
            binding::ParseStrictly(text);
            FAIL() << "accepted";
        } catch (const binding::SyntaxError& error) {
            EXPECT_EQ(error.Place(), "2:1");
            EXPECT_STREQ(error.what(), "expected the end of the document, found a NUL");
        }
    }
    EXPECT_THROW(binding::ParseStrictly("\0"s), binding::SyntaxError);
}

TEST(JsonText, PathsReadLikeCode) {
    EXPECT_EQ(binding::PathText({"sys", "list", std::size_t{2}, "kind"}), "sys.list[2].kind");
    EXPECT_EQ(binding::PathText({}), "");
}

}  // namespace
