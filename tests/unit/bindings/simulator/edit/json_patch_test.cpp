// Changed documents stay readable, and what does not change stays as it was written.
#include "bindings/simulator/edit/json_patch.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "bindings/json/formatted.h"

namespace {

using json = nlohmann::ordered_json;
using binding::Formatted;
using binding::Patched;

/// The text after a change of its document.
template <typename Change>
std::string Changed(const std::string& text, Change change) {
    const json before = json::parse(text);
    json after = before;
    change(after);
    std::string patched = Patched(text, before, after);
    EXPECT_EQ(static_cast<const nlohmann::json&>(nlohmann::json::parse(patched)),
              nlohmann::json::parse(after.dump()));
    return patched;
}

TEST(JsonFormat, SmallValuesStandOnOneLine) {
    EXPECT_EQ(Formatted(json::parse(R"([1,"a",true,null,{"b":{"c":[]}},{}])")),
              R"([1, "a", true, null, {"b": {"c": []}}, {}])");
}

TEST(JsonFormat, LargeValuesStandOnLinesOfTheirOwn) {
    const std::string text(50, 'x');
    EXPECT_EQ(
        Formatted(json{{"a", text}, {"b", text}, {"c", {{"d", 1}}}}),
        "{\n    \"a\": \"" + text + "\",\n    \"b\": \"" + text + "\",\n    \"c\": {\"d\": 1}\n}");
    EXPECT_EQ(Formatted(json::array({text, text}), 1, 10),
              "[\n        \"" + text + "\",\n        \"" + text + "\"\n    ]");
}

TEST(JsonFormat, ALineHasAHundredColumnsWithTheCommaThatMayFollow) {
    EXPECT_EQ(Formatted(json::array({std::string(85, 'x')}), 0, 10).find('\n'), std::string::npos);
    EXPECT_NE(Formatted(json::array({std::string(86, 'x')}), 0, 10).find('\n'), std::string::npos);
}

TEST(JsonPatch, ChangesOnlyTheBytesOfTheValue) {
    EXPECT_EQ(Changed("{ \"a\" :1,\n\n\t\"b\": {\"c\":  2 }}", [](json& d) { d["b"]["c"] = 30; }),
              "{ \"a\" :1,\n\n\t\"b\": {\"c\":  30 }}");
}

TEST(JsonPatch, ChangesSeveralValues) {
    EXPECT_EQ(Changed(R"({"a": 1,"b": [ 2 ],"c": "x" })",
                      [](json& d) {
                          d["a"] = "long text";
                          d["c"] = 1;
                      }),
              R"({"a": "long text","b": [ 2 ],"c": 1 })");
}

TEST(JsonPatch, RewritesAChangedList) {
    EXPECT_EQ(Changed("{\n    \"a\": [ 1,2 ]\n}", [](json& d) { d["a"].push_back(3); }),
              "{\n    \"a\": [1, 2, 3]\n}");
}

TEST(JsonPatch, AddsMembers) {
    EXPECT_EQ(Changed("{\n    \"a\": {\n        \"b\": 1\n    }\n}",
                      [](json& d) { d["a"]["c"]["d"] = 2; }),
              "{\n    \"a\": {\n        \"c\": {\"d\": 2},\n        \"b\": 1\n    }\n}");
    EXPECT_EQ(Changed("{}", [](json& d) { d["a"]["b"] = 1; }), R"({"a": {"b": 1}})");
}

TEST(JsonPatch, RemovesMembers) {
    EXPECT_EQ(Changed(R"({"x": 1,   "a": {"b": 1, "c": 2}})", [](json& d) { d["a"].erase("b"); }),
              R"({"x": 1,   "a": {"c": 2}})");
}

TEST(JsonPatch, ChangesTheKindOfAValue) {
    EXPECT_EQ(Changed(R"({"a": {"b": 1}})", [](json& d) { d["a"] = 1; }), R"({"a": 1})");
    EXPECT_EQ(Changed(R"({"a": 1})", [](json& d) { d["a"] = {{"b", 1}}; }), R"({"a": {"b": 1}})");
}

TEST(JsonPatch, LeavesAnUnchangedTextAlone) {
    EXPECT_EQ(Changed(" {\"a\": 1.50, \"b\": \"\\u0041\"}\n", [](json&) {}),
              " {\"a\": 1.50, \"b\": \"\\u0041\"}\n");
}

}  // namespace
