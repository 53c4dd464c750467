// Values in the conventions of the web UI.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bindings/recording/recording.h"
#include "framework/page_component.h"
#include "tests/support/json.h"
#include "tests/support/transcript.h"
#include "tests/support/translations.h"

using recording::Failure;
using recording::Log;
using recording::TranscriptText;

namespace {

const std::string kSetText =
    " - static void PageComponent::SetData(CTPP::CDT&, const string&, const string&)";
const std::string kSetBool =
    " - static void PageComponent::SetData(CTPP::CDT&, const string&, bool)";
const std::string kIsTrue = " - bool PageComponent::IsTrue(const string&, bool)";
const std::string kChecker =
    " - static PageError PageComponent::nativeChecker(int, std::__cxx11::string, "
    "std::__cxx11::string)";
const std::string kConvert =
    " - static std::__cxx11::string PageComponent::ConvertUnitToLanguage(std::__cxx11::string)";

class PageValuesTest : public testing::Test {
  protected:
    void SetUp() override {
        recording::Reset();
        translations::Reset();
    }

    CTPP::CDT tree;
};

TEST_F(PageValuesTest, TextIsStoredTranslatedAndLoggedUntranslated) {
    translations::Give("webui", "greeting_text", "Guten Tag");
    translations::Give("other", "greeting_text", "not this one");
    PageComponent::SetData(tree, "greeting", std::string("greeting_text"));
    EXPECT_EQ(ToJson(tree), R"({"greeting":"Guten Tag"})");
    EXPECT_EQ(TranscriptText(), Steps({Log(7, kSetText + "- greeting = \"greeting_text\"")}));
}

TEST_F(PageValuesTest, TextWithoutTranslationIsStoredAsItIs) {
    PageComponent::SetData(tree, "name", std::string("Orvane"));
    EXPECT_EQ(ToJson(tree), R"({"name":"Orvane"})");
    EXPECT_EQ(TranscriptText(), Steps({Log(7, kSetText + "- name = \"Orvane\"")}));
}

TEST_F(PageValuesTest, PlainCTextIsTextAndNotASwitch) {
    translations::Give("webui", "greeting_text", "Guten Tag");
    PageComponent::SetData(tree, "greeting", "greeting_text");
    EXPECT_EQ(ToJson(tree), R"({"greeting":"Guten Tag"})");
    EXPECT_EQ(TranscriptText(), Steps({Log(7, kSetText + "- greeting = \"greeting_text\"")}));
}

TEST_F(PageValuesTest, MissingCTextIsTheEmptyText) {
    PageComponent::SetData(tree, "key", static_cast<const char*>(nullptr));
    EXPECT_EQ(ToJson(tree), R"({"key":""})");
}

TEST_F(PageValuesTest, IntegerIsStoredAsItsDecimalText) {
    PageComponent::SetData(tree, "a", 42);
    PageComponent::SetData(tree, "b", -2147483647 - 1);
    PageComponent::SetData(tree, "c", 0);
    EXPECT_EQ(ToJson(tree), R"({"a":"42","b":"-2147483648","c":"0"})");
    EXPECT_EQ(TranscriptText(),
              Steps({Log(7, kSetText + "- a = \"42\""), Log(7, kSetText + "- b = \"-2147483648\""),
                     Log(7, kSetText + "- c = \"0\"")}));
}

TEST_F(PageValuesTest, DecimalTextOfAnIntegerIsTranslatedAsWell) {
    translations::Give("webui", "5", "five");
    PageComponent::SetData(tree, "count", 5);
    EXPECT_EQ(ToJson(tree), R"({"count":"five"})");
    EXPECT_EQ(TranscriptText(), Steps({Log(7, kSetText + "- count = \"5\"")}));
}

TEST_F(PageValuesTest, FalseIsTheIntegerZero) {
    PageComponent::SetData(tree, "enabled", false);
    EXPECT_EQ(ToJson(tree), R"({"enabled":0})");
    EXPECT_EQ(tree.GetCDT("enabled").GetType(), CTPP::CDT::INT_VAL);
    EXPECT_EQ(TranscriptText(), Steps({Log(7, kSetBool + "- enabled = 0")}));
}

TEST_F(PageValuesTest, TrueIsTheIntegerOne) {
    translations::Give("webui", "1", "not for switches");
    PageComponent::SetData(tree, "enabled", true);
    EXPECT_EQ(ToJson(tree), R"({"enabled":1})");
    EXPECT_EQ(tree.GetCDT("enabled").GetType(), CTPP::CDT::INT_VAL);
    EXPECT_EQ(TranscriptText(), Steps({Log(7, kSetBool + "- enabled = 1")}));
}

TEST_F(PageValuesTest, ValueReplacesTheOneBeforeAndLeavesOtherKeysAlone) {
    tree["other"] = 1;
    PageComponent::SetData(tree, "state", true);
    PageComponent::SetData(tree, "state", "on");
    EXPECT_EQ(ToJson(tree), R"({"other":1,"state":"on"})");
}

TEST_F(PageValuesTest, SixWordsAreASwitchWhateverTheDefaultAndAreNotLogged) {
    for (const bool defaultValue : {false, true}) {
        for (const std::string word : {"true", "on", "1"}) {
            EXPECT_TRUE(PageComponent::IsTrue(word, defaultValue)) << word;
        }
        for (const std::string word : {"false", "off", "0"}) {
            EXPECT_FALSE(PageComponent::IsTrue(word, defaultValue)) << word;
        }
    }
    EXPECT_EQ(TranscriptText(), "");
}

TEST_F(PageValuesTest, AnyOtherTextTakesTheDefaultAndIsLoggedOnce) {
    for (const std::string text : {"TRUE", "yes", "On", "", " 1", "true ", "01", "10", "no"}) {
        for (const bool defaultValue : {false, true}) {
            recording::Reset();
            EXPECT_EQ(PageComponent::IsTrue(text, defaultValue), defaultValue) << text;
            const std::string line = kIsTrue + " - couldn't convert " + text +
                                     " to a boolean value, treating as " +
                                     (defaultValue ? "1" : "0");
            EXPECT_EQ(TranscriptText(),
                      Steps({"syslog 138 [KESTAL_CGI]:[NOTICE]" + line, Log(5, line)}));
        }
    }
}

TEST_F(PageValuesTest, SuccessfulCallIsNoErrorAndNotLogged) {
    EXPECT_EQ(PageComponent::nativeChecker(0, "sys_getRadioEnabled", "hint"), PAGE_ERROR_NONE);
    EXPECT_EQ(TranscriptText(), "");
}

TEST_F(PageValuesTest, FailedCallIsLoggedByNameAndFails) {
    for (const int result : {1, 77, -3}) {
        recording::Reset();
        EXPECT_EQ(PageComponent::nativeChecker(result, "sys_getRadioEnabled", "hint"),
                  PAGE_ERROR_FAILED);
        EXPECT_EQ(TranscriptText(), Steps({Failure(kChecker + " - sys_getRadioEnabled returned - " +
                                                   std::to_string(result))}));
    }
}

TEST_F(PageValuesTest, DataUnitsHaveNamesInTheLanguageOfTheUser) {
    const std::vector<std::pair<std::string, std::string>> units = {
        {"b", "webui_app_bit_text"},        {"Kb", "webui_app_kilobit_text"},
        {"Mb", "webui_app_megabit_text"},   {"Gb", "webui_app_gigabit_text"},
        {"B", "webui_app_bytes_text"},      {"KB", "webui_app_kilobytes_text"},
        {"MB", "webui_app_megabytes_text"}, {"GB", "webui_app_gigabytes_text"},
    };
    for (const auto& [unit, id] : units) {
        EXPECT_EQ(PageComponent::ConvertUnitToLanguage(unit), id);
        translations::Give("webui", id, "name of " + unit);
        EXPECT_EQ(PageComponent::ConvertUnitToLanguage(unit), "name of " + unit);
    }
    EXPECT_EQ(TranscriptText(), "");
}

TEST_F(PageValuesTest, UnknownUnitIsLoggedAndReturnedAsItIs) {
    for (const std::string unit : {"kB", "kb", "mB", "gb", "KBs", "TB", "%s", ""}) {
        recording::Reset();
        translations::Give("webui", unit, "not translated");
        EXPECT_EQ(PageComponent::ConvertUnitToLanguage(unit), unit);
        EXPECT_EQ(
            TranscriptText(),
            Steps({Failure(kConvert + " - Unknown Unit Type!  No conversion can be done for " +
                           unit + ".")}));
    }
}

}  // namespace
