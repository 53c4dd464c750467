#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "to_json.h"

namespace {

using CTPP::CDT;

CDT Tree() {
    CDT tree;
    tree["hash"]["k"] = "v";
    tree["array"][0] = 1;
    tree["text"] = "t";
    return tree;
}

constexpr const char* kTree = R"({"array":[1],"hash":{"k":"v"},"text":"t"})";

TEST(CDTCopies, WritesToACopyAreIsolated) {
    const CDT original = Tree();
    CDT copy(original);
    copy["hash"]["k"] = "changed";
    copy["array"][3] = 4;
    copy["text"].Append("u");
    copy["hash"].Erase("k");
    copy["new"] = 1;
    EXPECT_EQ(ToJSON(original), kTree);
    EXPECT_EQ(ToJSON(copy), R"({"array":[1,null,null,4],"hash":{},"new":1,"text":"tu"})");
}

TEST(CDTCopies, WritesToTheOriginalAreIsolated) {
    CDT original = Tree();
    CDT copy;
    copy = original;
    original["hash"]["k"] = "changed";
    original["text"] = CDT();
    EXPECT_EQ(ToJSON(copy), kTree);
}

TEST(CDTCopies, PushBackDoesNotChangeCopies) {
    CDT original;
    original.PushBack(1);
    CDT copy = original;
    copy.PushBack(2);
    EXPECT_EQ(ToJSON(original), "[1]");
    EXPECT_EQ(ToJSON(copy), "[1,2]");
}

TEST(CDTCopies, WritesThroughAtAndIteratorsDoNotChangeCopies) {
    const CDT original = Tree();
    CDT copy = original;
    copy.At("hash").At("k") = "changed";
    copy.At("array").At(0) = 2;
    copy.Begin()->second.PushBack(3);
    EXPECT_EQ(ToJSON(original), kTree);
    EXPECT_EQ(ToJSON(copy), R"({"array":[2,3],"hash":{"k":"changed"},"text":"t"})");
}

TEST(CDTCopies, AReferenceTakenBeforeTheCopyReachesOnlyItsOwnTree) {
    CDT original = Tree();
    CDT& text = original["text"];
    const CDT copy = original;
    text = "changed";
    EXPECT_EQ(ToJSON(copy), kTree);
    EXPECT_EQ(original["text"].GetString(), "changed");
}

TEST(CDTCopies, OneRowCanBePushedAgainAndAgain) {
    CDT rows;
    CDT row;
    for (int i = 0; i < 3; ++i) {
        row["id"] = i;
        rows.PushBack(row);
    }
    EXPECT_EQ(ToJSON(rows), R"([{"id":0},{"id":1},{"id":2}])");
}

TEST(CDTCopies, AChildCanReplaceItsParent) {
    CDT tree = Tree();
    tree = tree["hash"];
    EXPECT_EQ(ToJSON(tree), R"({"k":"v"})");
    tree = std::move(tree["k"]);
    EXPECT_EQ(ToJSON(tree), "\"v\"");
}

TEST(CDTCopies, AKeyCanReplaceItsHash) {
    CDT tree;
    tree["a key that is too long to be stored in place"] = 1;
    tree = tree.Begin()->first;
    EXPECT_EQ(ToJSON(tree), "\"a key that is too long to be stored in place\"");
}

TEST(CDTCopies, ATreePutIntoItselfIsACopyNotACycle) {
    CDT hash;
    hash["k"] = 1;
    hash["x"] = hash;
    EXPECT_EQ(ToJSON(hash["x"]["k"]), "1");
    EXPECT_EQ(hash["x"]["x"].GetType(), CDT::UNDEF);

    CDT array;
    array.PushBack(1);
    array.PushBack(array);
    EXPECT_EQ(ToJSON(array), "[1,[1]]");
    array.PushBack(std::move(array));
    EXPECT_EQ(ToJSON(array), "[[1,[1]]]");
}

TEST(CDTCopies, SelfAssignmentChangesNothing) {
    CDT tree = Tree();
    CDT& same = tree;
    tree = same;
    EXPECT_EQ(ToJSON(tree), kTree);
    tree = std::move(same);
    EXPECT_EQ(ToJSON(tree), kTree);
}

TEST(CDTMoves, LeaveUndefinedBehind) {
    CDT tree;
    tree["from"] = Tree();
    tree["to"] = std::move(tree["from"]);
    CDT constructed(std::move(tree["to"]));
    EXPECT_EQ(ToJSON(tree), R"({"from":null,"to":null})");
    EXPECT_EQ(ToJSON(constructed), kTree);
    tree["rows"].PushBack(std::move(constructed["array"]));
    EXPECT_EQ(ToJSON(tree["rows"]), "[[1]]");
    EXPECT_EQ(constructed["array"].GetType(), CDT::UNDEF);
}

TEST(CDTMoves, TextsAndKeysOfAnyLengthArriveAndExistingMembersStay) {
    const std::string longText(100, 'l');
    std::string key = longText;
    std::string text = longText;
    CDT tree;
    tree["short"] = std::string("s");
    tree[std::move(key)] = std::move(text);
    EXPECT_EQ(tree.At(longText).GetString(), longText);
    EXPECT_EQ(tree["short"].GetString(), "s");
    tree[std::string(longText)].Append("!");
    EXPECT_EQ(tree.Size(), 2U);
    EXPECT_EQ(tree.At(longText).GetString(), longText + "!");
    EXPECT_EQ(CDT(std::string("7")).GetType(), CDT::STRING_VAL);
}

TEST(CDTMoves, AMovedTextReplacesWhateverWasThere) {
    std::string text(100, 't');
    CDT tree;
    tree["k"] = 1;
    tree = std::move(text);
    EXPECT_EQ(tree.GetString(), std::string(100, 't'));
    tree = std::string();
    EXPECT_EQ(ToJSON(tree), "\"\"");
}

}  // namespace
